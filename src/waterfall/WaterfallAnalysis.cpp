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
    if (std::exchange(knownInterruptions_, interruptions) != interruptions) {
        image_.markGap();
        if (pass_.isUnderWay())
            abandonPass();
    }
    while (!interleaved.empty() && !interrupted()) {
        const std::size_t step = std::min(interleaved.size(), kStepSamples);
        take(interleaved.first(step));
        interleaved = interleaved.subspan(step);
        produceAllLines();
    }
    return drewLines_;
}

void WaterfallAnalysis::forget() {
    pass_ = {};
    ring_.dropWaiting();
    slowColumn_.clear();
}

void WaterfallAnalysis::take(std::span<const std::int16_t> interleaved) {
    const auto samples = static_cast<std::int32_t>(interleaved.size() / 2);
    const auto isBehind = [this, samples] { return ring_.room() <= samples; };
    const bool unwanted =
        pass_.isUnderWay() &&
        (pass_.speedup != parameters_.waterfallSpeedup.load(std::memory_order_relaxed) || isHeld());
    if (isBehind() && unwanted) {
        drop(ring_.available());
        abandonPass();
    }
    const ChannelFold channel = parameters_.channel.load(std::memory_order_relaxed);
    if (std::exchange(channel_, channel) != channel)
        abandonPass(); // and what waits, which is of the other one
    if (isBehind())
        drop(samples);
    else
        ring_.fold(interleaved, channel);
}

void WaterfallAnalysis::drop(std::int32_t samples) {
    droppedSamples_.store(droppedSamples() + samples, std::memory_order_relaxed);
    image_.markGap();
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
            image_.markGap();
            return;
        }
        const std::int32_t length = parameters_.frameLength();
        if (ring_.available() <= length)
            return;
        ProduceWaterfallLines(length);
    }
}

bool WaterfallAnalysis::isHeld() const {
    return parameters_.paused.load(std::memory_order_relaxed) != 0;
}

bool WaterfallAnalysis::paused() {
    if (isHeld())
        return true;
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
    const bool isSlow = parameters_.slowSamples() > 0.0;
    if (speedup > 1) {
        const double samples = length;
        pass_ = {.length = length,
                 .speedup = speedup,
                 .hop = truncateToInt32(samples / speedup),
                 .keep = truncateToInt32(samples - samples / speedup),
                 .isSlow = isSlow};
        continuePass();
        return;
    }
    frames_.takeFrame(length);
    const std::int32_t drawnLength = frames_.produceLine();
    if (isSlow)
        gather(drawnLength, length);
    else
        draw(drawnLength, length, 1, 1);
}

void WaterfallAnalysis::continuePass() {
    for (; pass_.isUnderWay() && !hasToStop(); ++pass_.next) {
        frames_.slideFrame(pass_.length, pass_.hop, pass_.keep);
        const std::int32_t drawnLength = frames_.produceSlidLine(); // a new length shows at once
        if (pass_.isSlow)
            gather(drawnLength, pass_.hop);
        else
            draw(drawnLength, pass_.hop, pass_.speedup - pass_.next, pass_.next == 0 ? pass_.speedup : 0);
    }
}

/// A line of the frame at hand, as a column of its own.
void WaterfallAnalysis::draw(std::int32_t length, std::int32_t samples, std::int32_t offset,
                             std::int32_t scroll) {
    slowColumn_.clear();
    image_.setSource(source(samples));
    image_.drawFFTLine(frames_.magnitudes(length, image_.binsFor(length)), length, offset, scroll);
    drewLines_ = true;
}

/// The same as a part of a slow column.
void WaterfallAnalysis::gather(std::int32_t length, std::int32_t samples) {
    const double wanted = parameters_.slowSamples();
    const LineMerge merge = parameters_.lineMerge.load(std::memory_order_relaxed);
    if (!slowColumn_.add(frames_.powers(image_.binsFor(length)), samples, wanted, merge))
        return;
    ColumnSource slow = source(std::max<double>(samples, wanted));
    slow.merge = static_cast<std::int32_t>(merge);
    image_.setSource(slow);
    image_.drawFFTLine(slowColumn_.magnitudes(static_cast<std::size_t>(length)), length, 1, 1);
    drewLines_ = true;
}

ColumnSource WaterfallAnalysis::source(double samples) const {
    return {.samples = samples,
            .window = parameters_.waterfallWindowType.load(std::memory_order_relaxed),
            .channel = channel_,
            .speedup = std::max(pass_.speedup, 1),
            .merge = -1};
}

void WaterfallAnalysis::abandonPass() {
    pass_ = {};
    ring_.dropWaiting();
    image_.markGap();
}

} // namespace sonotrace
