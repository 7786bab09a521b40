#include "waterfall/WaterfallAnalysis.h"

#include "platform/Numbers.h"
#include "platform/StreamDescription.h"

#include <algorithm>

namespace sonotrace {

namespace {

// Larger pieces than the buffers of a capture are taken in steps of one, so that the ring cannot overrun.
constexpr std::size_t kStepSamples = std::size_t{2} * kCaptureFramesPerBuffer;
static_assert(kLargestFrameLength + kCaptureFramesPerBuffer < SampleRing::kSamples);

} // namespace

WaterfallAnalysis::WaterfallAnalysis(WaterfallParameters& parameters, WaterfallImage& image)
    : parameters_(parameters), image_(image), frames_(parameters, ring_) {}

void WaterfallAnalysis::capture(std::span<const std::int16_t> interleaved) {
    while (!interleaved.empty() && !interrupted()) {
        const std::size_t step = std::min(interleaved.size(), kStepSamples);
        ring_.fold(interleaved.first(step));
        interleaved = interleaved.subspan(step);
        produceAllLines();
    }
}

void WaterfallAnalysis::produceAllLines() {
    bool stopped = paused();
    while (!stopped && !interrupted()) {
        const std::int32_t length = parameters_.frameLength();
        if (ring_.available() <= length)
            return;
        stopped = !ProduceWaterfallLines(length);
    }
    if (stopped)
        ring_.dropWaiting();
}

bool WaterfallAnalysis::paused() {
    const std::int32_t speedup = parameters_.waterfallSpeedup.load(std::memory_order_relaxed);
    if (speedup <= 0)
        return true;
    // A longer transform may be waiting that has room for the speed-up. It is for a line to take it up, and
    // no line would come.
    return speedup > parameters_.frameLength() && speedup > frames_.adoptRequestedLength();
}

bool WaterfallAnalysis::ProduceWaterfallLines(std::int32_t length) {
    const std::int32_t speedup = parameters_.waterfallSpeedup.load(std::memory_order_relaxed);
    if (speedup <= 0 || speedup > length)
        return false;
    frames_.updateCoefficients(length);
    if (speedup > 1) {
        produceOverlappingLines(length, speedup);
        return true;
    }
    frames_.takeFrame(length);
    const std::int32_t drawnLength = frames_.produceLine();
    image_.drawFFTLine(frames_.magnitudes(), drawnLength, 1, 1);
    return true;
}

void WaterfallAnalysis::produceOverlappingLines(std::int32_t length, std::int32_t speedup) {
    const double samples = length;
    const std::int32_t hop = truncateToInt32(samples / speedup);
    const std::int32_t keep = truncateToInt32(samples - samples / speedup);
    for (std::int32_t k = 0; k < speedup && !interrupted(); ++k) {
        frames_.slideFrame(length, hop, keep);
        const std::int32_t drawnLength = frames_.produceSlidLine(); // a new length shows at once
        image_.drawFFTLine(frames_.magnitudes(), drawnLength, speedup - k, k == 0 ? speedup : 0);
    }
}

} // namespace sonotrace
