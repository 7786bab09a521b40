#include "waterfall/WaterfallAnalysis.h"

#include "base/Numbers.h"
#include "platform/StreamDescription.h"

#include <algorithm>
#include <utility>

namespace sonotrace {

namespace {

// Larger pieces than the buffers of a capture are taken in steps of one, so that the ring cannot overrun.
constexpr std::size_t kStepSamples = std::size_t{2} * kCaptureFramesPerBuffer;

// Of the quarter of a second that a captured buffer is. Lines that do not fit wait for the next one.
constexpr std::chrono::milliseconds kWorkPerBuffer{220};
static_assert(kLargestFrameLength + kCaptureFramesPerBuffer < SampleRing::kSamples);

} // namespace

WaterfallAnalysis::WaterfallAnalysis(WaterfallParameters& parameters, WaterfallImage& image, DeferredLog& log,
                                     Clock clock)
    : parameters_(parameters), image_(image), clock_(std::move(clock)), frames_(parameters, ring_, log) {}

bool WaterfallAnalysis::capture(std::span<const std::int16_t> interleaved) {
    drewLines_ = false;
    const std::int32_t interruptions = interruptions_.load(std::memory_order_relaxed);
    if (std::exchange(knownInterruptions_, interruptions) != interruptions && pass_.isUnderWay())
        abandonPass();
    while (!interleaved.empty() && !interrupted()) {
        const std::size_t step = std::min(interleaved.size(), kStepSamples);
        take(interleaved.first(step));
        interleaved = interleaved.subspan(step);
        produceAllLines();
    }
    return drewLines_;
}

void WaterfallAnalysis::take(std::span<const std::int16_t> interleaved) {
    const auto samples = static_cast<std::int32_t>(interleaved.size() / 2);
    const auto isBehind = [this, samples] { return ring_.room() <= samples; };
    const bool unwanted =
        pass_.isUnderWay() && pass_.speedup != parameters_.waterfallSpeedup.load(std::memory_order_relaxed);
    if (isBehind() && unwanted) {
        drop(ring_.available());
        abandonPass();
    }
    if (isBehind())
        drop(samples);
    else
        ring_.fold(interleaved);
}

void WaterfallAnalysis::drop(std::int32_t samples) {
    droppedSamples_.store(droppedSamples() + samples, std::memory_order_relaxed);
}

void WaterfallAnalysis::produceAllLines() {
    deadline_ = clock_() + kWorkPerBuffer;
    while (!hasToStop()) {
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
    draw(frames_.produceLine(), 1, 1);
}

void WaterfallAnalysis::continuePass() {
    for (; pass_.isUnderWay() && !hasToStop(); ++pass_.next) {
        frames_.slideFrame(pass_.length, pass_.hop, pass_.keep);
        const std::int32_t drawnLength = frames_.produceSlidLine(); // a new length shows at once
        draw(drawnLength, pass_.speedup - pass_.next, pass_.next == 0 ? pass_.speedup : 0);
    }
}

void WaterfallAnalysis::draw(std::int32_t length, std::int32_t offset, std::int32_t scroll) {
    image_.drawFFTLine(frames_.magnitudes(length), length, offset, scroll);
    drewLines_ = true;
}

void WaterfallAnalysis::abandonPass() {
    pass_ = {};
    ring_.dropWaiting();
}

} // namespace sonotrace
