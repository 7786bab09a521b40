#include "generator/Mixing.h"

#include "base/Numbers.h"
#include "base/WideVectors.h"

#include <algorithm>
#include <cmath>

// The inner loops are written for the compiler's vectoriser, for which a conversion may have no condition
// around it: a number that does not fit is exchanged for one that does, and then all are converted. `tame`
// says that all fit, and the compiler makes a loop without the question of it.

namespace sonotrace {

namespace {

constexpr double k2To31 = 2147483648.0;
constexpr double k2To63 = 9223372036854775808.0;
constexpr double kTameGain = 1000.0; // x a million is within 32 bits

bool isTame(StereoGain gain) {
    return std::abs(gain.left) <= kTameGain && std::abs(gain.right) <= kTameGain;
}

SONOTRACE_WIDE_VECTORS void spread(double* contributions, const double* values, std::size_t frames,
                                   double left, double right) {
    for (std::size_t i = 0; i < frames; ++i) {
        contributions[2 * i] = values[i] * left;
        contributions[2 * i + 1] = values[i] * right;
    }
}

SONOTRACE_WIDE_VECTORS void spreadIntegers(double* contributions, const std::int32_t* values,
                                           std::size_t frames, double left, double right) {
    for (std::size_t i = 0; i < frames; ++i) {
        contributions[2 * i] = static_cast<double>(values[2 * i]) * left;
        contributions[2 * i + 1] = static_cast<double>(values[2 * i + 1]) * right;
    }
}

/// Adds as addToSample() does.
SONOTRACE_WIDE_VECTORS void add(std::int16_t* samples, const double* contributions, std::size_t count,
                                bool tame) {
    for (std::size_t i = 0; i < count; ++i) {
        const double sum = static_cast<double>(samples[i]) + contributions[i];
        const bool fits = tame || std::abs(sum) < k2To31;
        samples[i] = wrapToSample(static_cast<std::int32_t>(fits ? sum : -k2To31));
    }
}

/// What lies beyond 64 bits, and NaN, counts as the lowest number whatever its sign.
SONOTRACE_WIDE_VECTORS void addClamped(std::int16_t* samples, const double* contributions, std::size_t count,
                                       bool tame) {
    for (std::size_t i = 0; i < count; ++i) {
        const double value = contributions[i] * 32768.0;
        const double limit = value > 0.0 && value < k2To63 ? 32767.0 : -32767.0;
        const bool fits = tame || std::abs(value) < k2To31;
        const auto integer = static_cast<std::int32_t>(fits ? value : limit);
        samples[i] = wrapToSample(samples[i] + std::clamp(integer, -32767, 32767));
    }
}

} // namespace

void mixMono(std::span<std::int16_t> interleaved, std::span<const double> values, StereoGain gain) {
    double contributions[2 * kMixFrames];
    spread(contributions, values.data(), values.size(), gain.left, gain.right);
    add(interleaved.data(), contributions, interleaved.size(), isTame(gain));
}

void mixStereo(std::span<std::int16_t> interleaved, std::span<const std::int32_t> values, StereoGain gain) {
    double contributions[2 * kMixFrames];
    spreadIntegers(contributions, values.data(), values.size() / 2, gain.left, gain.right);
    add(interleaved.data(), contributions, interleaved.size(), isTame(gain));
}

void mixClamped(std::span<std::int16_t> interleaved, std::span<const double> values, StereoGain gain) {
    double contributions[2 * kMixFrames];
    spread(contributions, values.data(), values.size(), gain.left, gain.right);
    addClamped(interleaved.data(), contributions, interleaved.size(), isTame(gain));
}

void negate(std::span<std::int16_t> samples) {
    for (std::int16_t& sample : samples)
        sample = wrapToSample(-sample);
}

} // namespace sonotrace
