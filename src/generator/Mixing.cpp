#include "generator/Mixing.h"

#include "base/Numbers.h"
#include "base/WideVectors.h"

#include <algorithm>
#include <cmath>

// The loops are written for the compiler's vectoriser, which makes two of each that asks a flag.

namespace sonotrace {

namespace {

constexpr double k2To63 = 9223372036854775808.0;

/// Of gains for which all sums and noises are within 32 bits.
bool isTame(StereoGain gain) {
    return std::abs(gain.left) <= 1000.0 && std::abs(gain.right) <= 1000.0;
}

std::int32_t truncate(double value, bool tame) {
    return tame ? static_cast<std::int32_t>(value) : truncateToInt32(value);
}

/// What lies beyond 64 bits, and NaN, counts as the lowest number whatever its sign.
std::int32_t truncateClamped(double value, bool tame) {
    const bool high = !tame && value > 32767.0 && value < k2To63;
    return std::clamp(truncate(high ? 32767.0 : value, tame), -32767, 32767);
}

} // namespace

SONOTRACE_WIDE_VECTORS void load(MixBlock& block, std::span<const std::int16_t> interleaved) {
    for (std::size_t i = 0; i < interleaved.size() / 2; ++i) {
        block.left[i] = interleaved[2 * i];
        block.right[i] = interleaved[2 * i + 1];
    }
}

SONOTRACE_WIDE_VECTORS void store(const MixBlock& block, std::span<std::int16_t> interleaved) {
    for (std::size_t i = 0; i < interleaved.size() / 2; ++i) {
        interleaved[2 * i] = static_cast<std::int16_t>(block.left[i]);
        interleaved[2 * i + 1] = static_cast<std::int16_t>(block.right[i]);
    }
}

SONOTRACE_WIDE_VECTORS void mix(MixBlock& block, const MixValues& values, std::size_t frames, StereoGain gain,
                                bool fits) {
    for (std::size_t i = 0; i < frames; ++i) {
        const double left = block.left[i] + values[i] * gain.left;
        const double right = block.right[i] + values[i] * gain.right;
        block.left[i] = fits ? static_cast<std::int32_t>(left) : wrapToSample(truncateToInt32(left));
        block.right[i] = fits ? static_cast<std::int32_t>(right) : wrapToSample(truncateToInt32(right));
    }
}

SONOTRACE_WIDE_VECTORS void mixDraws(std::span<std::int16_t> interleaved, const std::uint32_t* draws,
                                     StereoGain gain) {
    const bool tame = isTame(gain);
    for (std::size_t i = 0; i < interleaved.size(); i += 2) {
        const auto left = static_cast<std::int32_t>(draws[i] & 0x7FFFU);
        const auto right = static_cast<std::int32_t>(draws[i + 1] & 0x7FFFU);
        interleaved[i] = wrapToSample(truncate(interleaved[i] + left * gain.left, tame));
        interleaved[i + 1] = wrapToSample(truncate(interleaved[i + 1] + right * gain.right, tame));
    }
}

SONOTRACE_WIDE_VECTORS void mixClamped(std::span<std::int16_t> interleaved, const MixValues& values,
                                       StereoGain gain) {
    const bool tame = isTame(gain);
    double contributions[2 * kMixFrames];
    for (std::size_t i = 0; i < interleaved.size() / 2; ++i) {
        contributions[2 * i] = values[i] * gain.left;
        contributions[2 * i + 1] = values[i] * gain.right;
    }
    for (std::size_t i = 0; i < interleaved.size(); ++i)
        interleaved[i] = wrapToSample(interleaved[i] + truncateClamped(contributions[i] * 32768.0, tame));
}

void negate(std::span<std::int16_t> samples) {
    for (std::int16_t& sample : samples)
        sample = wrapToSample(-sample);
}

} // namespace sonotrace
