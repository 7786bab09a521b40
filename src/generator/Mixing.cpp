#include "generator/Mixing.h"

#include "base/Numbers.h"

#include <algorithm>
#include <cmath>

// The inner loops are written for the compiler's vectoriser, for which a conversion may have no condition
// around it. So each has two versions: one for gains under which no conversion can leave 32 bits, and a
// careful one. Where the loader can choose by processor, it gets a version with wider vectors; the bits are
// the same.
#if defined(__x86_64__) && !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
#define SONOTRACE_WIDE_VECTORS [[gnu::target_clones("avx2", "default")]]
#else
#define SONOTRACE_WIDE_VECTORS
#endif

namespace sonotrace {

namespace {

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

SONOTRACE_WIDE_VECTORS void addTame(std::int16_t* samples, const double* contributions, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const double sum = static_cast<double>(samples[i]) + contributions[i];
        samples[i] = wrapToSample(static_cast<std::int32_t>(sum));
    }
}

SONOTRACE_WIDE_VECTORS void addClampedTame(std::int16_t* samples, const double* contributions,
                                           std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto integer = static_cast<std::int32_t>(contributions[i] * 32768.0);
        samples[i] = wrapToSample(samples[i] + std::clamp(integer, -32767, 32767));
    }
}

void addContributions(std::span<std::int16_t> samples, const double* contributions, bool tame) {
    if (tame) {
        addTame(samples.data(), contributions, samples.size());
        return;
    }
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = addToSample(samples[i], contributions[i]);
}

} // namespace

void mixMono(std::span<std::int16_t> interleaved, std::span<const double> values, StereoGain gain) {
    double contributions[2 * kMixFrames];
    spread(contributions, values.data(), values.size(), gain.left, gain.right);
    addContributions(interleaved, contributions, isTame(gain));
}

void mixStereo(std::span<std::int16_t> interleaved, std::span<const std::int32_t> values, StereoGain gain) {
    double contributions[2 * kMixFrames];
    spreadIntegers(contributions, values.data(), values.size() / 2, gain.left, gain.right);
    addContributions(interleaved, contributions, isTame(gain));
}

void mixClamped(std::span<std::int16_t> interleaved, std::span<const double> values, StereoGain gain) {
    double contributions[2 * kMixFrames];
    spread(contributions, values.data(), values.size(), gain.left, gain.right);
    if (isTame(gain)) {
        addClampedTame(interleaved.data(), contributions, interleaved.size());
        return;
    }
    for (std::size_t i = 0; i < interleaved.size(); ++i) {
        const std::int64_t integer = truncateToInt64(contributions[i] * 32768.0);
        const auto clamped = static_cast<std::int32_t>(std::clamp<std::int64_t>(integer, -32767, 32767));
        interleaved[i] = wrapToSample(interleaved[i] + clamped);
    }
}

void negate(std::span<std::int16_t> samples) {
    for (std::int16_t& sample : samples)
        sample = wrapToSample(-sample);
}

} // namespace sonotrace
