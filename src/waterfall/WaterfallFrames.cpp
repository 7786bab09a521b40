#include "waterfall/WaterfallFrames.h"

#include "base/WideVectors.h"

#include <cmath>
#include <cstring>

namespace sonotrace {

namespace {

// The sizes decide what a line that reads past its end finds there, so they are part of the picture.
constexpr std::size_t kWorkFloats = 2 * 524289;
constexpr std::size_t kScratchFloats = 1048576;
static_assert(kWorkFloats >= 4 * kLargestFrameLength, "a slide reads up to 2 N complex numbers");

SONOTRACE_WIDE_VECTORS void weight(std::span<const std::int16_t> samples, const double* coeffs,
                                   float* frame) {
    for (std::size_t i = 0; i < samples.size(); ++i)
        frame[i] = static_cast<float>(static_cast<double>(samples[i]) * coeffs[i]);
}

/// The weight of a sliding frame is 0.5 minus the window: with "Hann" a cosine, which keeps the overlapping
/// lines apart.
SONOTRACE_WIDE_VECTORS void weightSliding(const float* pairs, const double* coeffs, std::size_t count,
                                          float* frame) {
    for (std::size_t i = 0; i < count; ++i)
        frame[i] = static_cast<float>((0.5 - coeffs[i]) * static_cast<double>(pairs[2 * i]));
}

SONOTRACE_WIDE_VECTORS void takePowers(const float* pairs, std::size_t bins, float* powers) {
    for (std::size_t i = 0; i < bins; ++i)
        powers[i] = pairs[2 * i] * pairs[2 * i] + pairs[2 * i + 1] * pairs[2 * i + 1];
}

SONOTRACE_WIDE_VECTORS void takeMagnitudes(const float* pairs, std::size_t bins, double* magnitudes) {
    for (std::size_t i = 0; i < bins; ++i) {
        const float power = pairs[2 * i] * pairs[2 * i] + pairs[2 * i + 1] * pairs[2 * i + 1];
        magnitudes[i] = std::sqrt(static_cast<double>(power));
    }
}

void logWindow(const LogRecord::Values& values) {
    logWindowCoeffs(static_cast<FftWindowType>(values[0]), static_cast<std::int64_t>(values[1]));
}

} // namespace

WaterfallFrames::WaterfallFrames(WaterfallParameters& parameters, SampleRing& ring, DeferredLog& log)
    : parameters_(parameters),
      ring_(ring),
      log_(log),
      transform_(parameters, log),
      waterfallWork_(kWorkFloats),
      waterfallScratch_(kScratchFloats),
      waterfallPowers_(kLargestFrameLength),
      waterfallMagnitudes_(kLargestFrameLength),
      waterfallCoeffs_(kLargestFrameLength) {
    // The first line builds its own all the same: by then the window's start-up has chosen another one.
    BuildNewWindowCoeffs(parameters.waterfallWindowType.load(std::memory_order_relaxed),
                         parameters.frameLength(), waterfallCoeffs_.data());
}

void WaterfallFrames::updateCoefficients(std::int32_t length) {
    const FftWindowType type = parameters_.waterfallWindowType.load(std::memory_order_relaxed);
    if (length == coefficientLength_ && type == coefficientType_)
        return;
    log_.add({logWindow, {double(type), double(length)}});
    fillWindowCoeffs(type, length, waterfallCoeffs_.data());
    coefficientLength_ = length;
    coefficientType_ = type;
}

void WaterfallFrames::takeFrame(std::int32_t length) {
    ring_.take(static_cast<std::size_t>(length),
               [this](std::size_t i, std::span<const std::int16_t> samples) {
                   weight(samples, waterfallCoeffs_.data() + i, waterfallWork_.data() + i);
               });
}

void WaterfallFrames::slideFrame(std::int32_t length, std::int32_t hop, std::int32_t keep) {
    const auto kept = static_cast<std::size_t>(keep);
    const auto taken = static_cast<std::size_t>(hop);
    // Twice the bytes of the pairs that are kept. The pair that a hop with a remainder leaves unfilled at the
    // frame's end gets its value from there.
    std::memmove(waterfallWork_.data(), waterfallWork_.data() + 2 * taken, kept * 16);
    ring_.take(taken, [this, kept](std::size_t i, std::span<const std::int16_t> samples) {
        float* pair = &waterfallWork_[2 * (kept + i)];
        for (const std::int16_t sample : samples) {
            *pair++ = static_cast<float>(sample);
            *pair++ = 0.0F;
        }
    });
    weightSliding(waterfallWork_.data(), waterfallCoeffs_.data(), static_cast<std::size_t>(length),
                  waterfallScratch_.data());
}

std::int32_t WaterfallFrames::produce(AlignedFloats& frame) {
    produced_ = frame.data();
    return transform_.transform(frame);
}

std::span<const float> WaterfallFrames::powers(std::size_t bins) {
    takePowers(produced_, bins, waterfallPowers_.data());
    return {waterfallPowers_.data(), bins};
}

std::span<const double> WaterfallFrames::magnitudes(std::int32_t length, std::size_t bins) {
    takeMagnitudes(produced_, bins, waterfallMagnitudes_.data());
    return {waterfallMagnitudes_.data(), static_cast<std::size_t>(length)};
}

} // namespace sonotrace
