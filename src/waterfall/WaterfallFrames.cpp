#include "waterfall/WaterfallFrames.h"

#include <cmath>
#include <cstring>

namespace sonotrace {

namespace {

// The sizes decide what a line that reads past its end finds there, so they are part of the picture.
constexpr std::size_t kWorkFloats = 2 * 524289;
constexpr std::size_t kScratchFloats = 1048576;
static_assert(kWorkFloats >= 4 * kLargestFrameLength, "a slide reads up to 2 N complex numbers");

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
    const auto count = static_cast<std::size_t>(length);
    for (std::size_t i = 0; i < count; ++i)
        waterfallWork_[i] = static_cast<float>(static_cast<double>(ring_.next()) * waterfallCoeffs_[i]);
}

void WaterfallFrames::slideFrame(std::int32_t length, std::int32_t hop, std::int32_t keep) {
    const auto count = static_cast<std::size_t>(length);
    const auto kept = static_cast<std::size_t>(keep);
    const auto taken = static_cast<std::size_t>(hop);
    // Twice the bytes of the pairs that are kept. The pair that a hop with a remainder leaves unfilled at the
    // frame's end gets its value from there.
    std::memmove(waterfallWork_.data(), waterfallWork_.data() + 2 * taken, kept * 16);
    for (std::size_t pair = kept; pair < kept + taken; ++pair) {
        waterfallWork_[2 * pair] = static_cast<float>(ring_.next());
        waterfallWork_[2 * pair + 1] = 0.0F;
    }
    // The weight of a sliding frame is 0.5 minus the window: with "Hann" a cosine, which keeps the
    // overlapping lines apart.
    for (std::size_t i = 0; i < count; ++i)
        waterfallScratch_[i] =
            static_cast<float>((0.5 - waterfallCoeffs_[i]) * static_cast<double>(waterfallWork_[2 * i]));
}

std::int32_t WaterfallFrames::produce(AlignedFloats& frame) {
    const std::int32_t length = transform_.transform(frame);
    const auto count = static_cast<std::size_t>(length);
    for (std::size_t i = 0; i < count; ++i) {
        const float re = frame[2 * i];
        const float im = frame[2 * i + 1];
        const float power = re * re + im * im;
        waterfallMagnitudes_[i] = std::sqrt(static_cast<double>(power));
    }
    return length;
}

} // namespace sonotrace
