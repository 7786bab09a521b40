#pragma once

#include <cstdint>
#include <limits>

namespace sonotrace {

/// Truncation toward zero. C++ leaves values outside the target's range undefined; here they, and NaN, give
/// the smallest 32-bit integer, which is what the processor's own conversion does.
constexpr std::int32_t truncateToInt32(double value) {
    if (value > -2147483649.0 && value < 2147483648.0)
        return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

/// The low 16 bits of an integer as a sample: sums that leave the sample range wrap around.
constexpr std::int16_t wrapToSample(std::int32_t value) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint32_t>(value)));
}

/// Adds a real-valued contribution to a sample: summed in double, truncated toward zero, wrapped to 16 bits.
constexpr std::int16_t addToSample(std::int16_t sample, double contribution) {
    return wrapToSample(truncateToInt32(static_cast<double>(sample) + contribution));
}

/// Sum of two samples in 16-bit arithmetic, wrapping around.
constexpr std::int16_t addSamples(std::int16_t a, std::int16_t b) {
    return wrapToSample(a + b);
}

} // namespace sonotrace
