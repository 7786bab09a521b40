#pragma once

#include "waterfall/SampleRing.h"
#include "waterfall/WaterfallFrames.h"
#include "waterfall/WaterfallImage.h"
#include "waterfall/WaterfallParameters.h"

#include <atomic>
#include <cstdint>
#include <span>

namespace sonotrace {

/// Turns captured samples into columns of the picture. Constructed and destroyed on the window thread, fed by
/// the capture thread.
///
/// With a speed-up s of 1 each line consumes N samples of its own. With s > 1 a pass consumes N samples (less
/// a remainder) and paints s lines that overlap, N / s samples apart: the picture scrolls by s pixels and the
/// lines fill them from left to right.
///
/// A speed-up of 0 and below, or one above N, which would leave less than a sample for a line, pauses the
/// picture: what is captured meanwhile is dropped, so that a sane value goes on with what is heard then.
/// Drawing on from no new samples would paint the same line for ever, and choosing another factor than the
/// one in the field would make its time axis wrong.
///
/// The longest transform with the largest speed-up makes minutes of work from three seconds of samples. A
/// pass therefore goes on over as many buffers as it needs, a bounded piece with each; samples that come
/// while the ring is full are lost, and another speed-up ends it.
class WaterfallAnalysis {
public:
    /// All arguments outlive the analysis.
    WaterfallAnalysis(WaterfallParameters& parameters, WaterfallImage& image, DeferredLog& log);

    /// Takes one captured buffer of interleaved stereo and paints the lines it completes. Capture thread.
    void capture(std::span<const std::int16_t> interleaved);

    /// Makes capture() return after the line it is at, and take nothing in from then on, until resume(). For
    /// the time a queue is being stopped, so that the window need not wait for the lines. Any thread.
    void interrupt() { interrupted_.store(1, std::memory_order_relaxed); }
    void resume() { interrupted_.store(0, std::memory_order_relaxed); }

private:
    /// A pass of overlapping lines, all of them with the numbers it began with.
    struct Pass {
        std::int32_t length = 0;
        std::int32_t speedup = 0;
        std::int32_t hop = 0;
        std::int32_t keep = 0;
        std::int32_t next = 0; ///< line

        bool isUnderWay() const { return next < speedup; }
    };

    bool interrupted() const { return interrupted_.load(std::memory_order_relaxed) != 0; }
    bool paused();
    void produceAllLines();

    /// Turns `length` samples of the ring, which holds as many, into a line, or begins a pass with them.
    void ProduceWaterfallLines(std::int32_t length);
    void continuePass();
    void abandonPass(); ///< and goes on with fresh samples

    WaterfallParameters& parameters_;
    WaterfallImage& image_;
    SampleRing ring_;
    WaterfallFrames frames_;
    Pass pass_;
    std::int64_t work_ = 0; ///< samples that may still be transformed for this buffer
    std::atomic<std::int32_t> interrupted_{0};
};

} // namespace sonotrace
