#pragma once

#include <cstdint>
#include <span>

namespace sonotrace {

/// Linear gains of one voice.
struct StereoGain {
    double left = 0;
    double right = 0;
};

/// Frames that the waveform routines work on at a time: small enough for local arrays that stay in the cache.
inline constexpr std::size_t kMixFrames = 250;

/// Adds value x gain to each channel of each frame: summed in double, truncated toward zero, wrapped to 16
/// bits. `interleaved` holds two samples a value, at most kMixFrames frames. `values` lie within a million of
/// zero; gains may be anything.
void mixMono(std::span<std::int16_t> interleaved, std::span<const double> values, StereoGain gain);

/// The same with a value of its own for each sample, of at most 16 bits.
void mixStereo(std::span<std::int16_t> interleaved, std::span<const std::int32_t> values, StereoGain gain);

/// Adds noise values of about -1 to 1: each contribution, value x gain x 32768, is clamped to +-32767 before
/// it is added as an integer.
void mixClamped(std::span<std::int16_t> interleaved, std::span<const double> values, StereoGain gain);

/// Negates every sample; -32768 stays as it is.
void negate(std::span<std::int16_t> samples);

} // namespace sonotrace
