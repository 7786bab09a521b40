#pragma once

namespace sonotrace {

/// Frames a second of everything the program plays, captures, computes and writes.
inline constexpr double kSampleRate = 44100.0;

} // namespace sonotrace
