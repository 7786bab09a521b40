#include "waterfall/WaterfallAnalysis.h"

#include "base/Numbers.h"
#include "platform/StreamDescription.h"

#include <algorithm>

namespace sonotrace {

namespace {

// Larger pieces than the buffers of a capture are taken in steps of one, so that the ring cannot overrun.
constexpr std::size_t kStepSamples = std::size_t{2} * kCaptureFramesPerBuffer;

// Samples to transform for one captured buffer; some 0.2 s of work. What does not fit waits for the next one.
constexpr std::int64_t kWorkPerBuffer = std::int64_t{1} << 24;
static_assert(kLargestFrameLength + kCaptureFramesPerBuffer < SampleRing::kSamples);

} // namespace

WaterfallAnalysis::WaterfallAnalysis(WaterfallParameters& parameters, WaterfallImage& image, DeferredLog& log)
    : parameters_(parameters), image_(image), frames_(parameters, ring_, log) {}

void WaterfallAnalysis::capture(std::span<const std::int16_t> interleaved) {
    if (pass_.isUnderWay() && pass_.speedup != parameters_.waterfallSpeedup.load(std::memory_order_relaxed))
        abandonPass();
    while (!interleaved.empty() && !interrupted()) {
        const std::size_t step = std::min(interleaved.size(), kStepSamples);
        if (ring_.room() > static_cast<std::int32_t>(step / 2)) // else a long pass is far behind
            ring_.fold(interleaved.first(step));
        interleaved = interleaved.subspan(step);
        produceAllLines();
    }
}

void WaterfallAnalysis::produceAllLines() {
    work_ = kWorkPerBuffer;
    while (work_ > 0 && !interrupted()) {
        if (pass_.isUnderWay()) {
            continuePass();
            continue;
        }
        if (paused()) {
            ring_.dropWaiting();
            return;
        }
        const std::int32_t length = parameters_.frameLength();
        if (ring_.available() <= length)
            return;
        ProduceWaterfallLines(length);
    }
    if (interrupted())
        abandonPass();
}

bool WaterfallAnalysis::paused() {
    const std::int32_t speedup = parameters_.waterfallSpeedup.load(std::memory_order_relaxed);
    if (speedup <= 0)
        return true;
    // A longer transform may be waiting that has room for the speed-up. It is for a line to take it up, and
    // no line would come.
    return speedup > parameters_.frameLength() && speedup > frames_.adoptRequestedLength();
}

void WaterfallAnalysis::ProduceWaterfallLines(std::int32_t length) {
    const std::int32_t speedup = parameters_.waterfallSpeedup.load(std::memory_order_relaxed);
    if (speedup <= 0 || speedup > length)
        return; // changed just now
    frames_.updateCoefficients(length);
    if (speedup > 1) {
        const double samples = length;
        pass_ = {.length = length,
                 .speedup = speedup,
                 .hop = truncateToInt32(samples / speedup),
                 .keep = truncateToInt32(samples - samples / speedup)};
        continuePass();
        return;
    }
    frames_.takeFrame(length);
    const std::int32_t drawnLength = frames_.produceLine();
    image_.drawFFTLine(frames_.magnitudes(), drawnLength, 1, 1);
    work_ -= drawnLength;
}

void WaterfallAnalysis::continuePass() {
    for (; pass_.isUnderWay() && work_ > 0 && !interrupted(); ++pass_.next) {
        frames_.slideFrame(pass_.length, pass_.hop, pass_.keep);
        const std::int32_t drawnLength = frames_.produceSlidLine(); // a new length shows at once
        image_.drawFFTLine(frames_.magnitudes(), drawnLength, pass_.speedup - pass_.next,
                           pass_.next == 0 ? pass_.speedup : 0);
        work_ -= drawnLength;
    }
}

void WaterfallAnalysis::abandonPass() {
    pass_ = {};
    ring_.dropWaiting();
}

} // namespace sonotrace
