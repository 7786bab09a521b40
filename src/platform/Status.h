#pragma once

#include <cstdint>

namespace sonotrace {

/// Result of a sound system call: 0 for success, otherwise one of the codes below. Printed in diagnostic
/// lines.
using Status = std::int32_t;

inline constexpr Status kNoError = 0;
inline constexpr Status kStatusUnavailable = -1;  ///< the sound system cannot do this, or is not there
inline constexpr Status kStatusNoSuchDevice = -2; ///< unknown device id, UID or channel
inline constexpr Status kStatusBadState = -3;     ///< for example a queue that has been disposed of
inline constexpr Status kStatusBadArgument = -4;  ///< for example a buffer of another queue
inline constexpr Status kStatusTimeout = -5;      ///< the server did not answer in time

} // namespace sonotrace
