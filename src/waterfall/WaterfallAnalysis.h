#pragma once

#include "waterfall/SampleRing.h"
#include "waterfall/SlowColumn.h"
#include "waterfall/WaterfallFrames.h"
#include "waterfall/WaterfallImage.h"
#include "waterfall/WaterfallParameters.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
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
/// The pause button does the same, and leaves the speed-up as it is.
///
/// A slow column is made of all lines of its time, as the speed-up makes them, and is painted as a single
/// line is.
///
/// The longest transform with the largest speed-up makes minutes of work from three seconds of samples. A
/// pass therefore goes on over as many buffers as it needs, for as long with each as leaves the stream alive,
/// and ends with the speed-up it began with. Samples that come while the ring is full are dropped; then a
/// pass whose speed-up is not wanted any more is given up, with all that waits.
class WaterfallAnalysis {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// All arguments outlive the analysis.
    WaterfallAnalysis(WaterfallParameters& parameters, WaterfallImage& image, DeferredLog& log,
                      Clock clock = std::chrono::steady_clock::now);

    /// Takes one captured buffer of interleaved stereo and paints the lines it completes, if any. Capture
    /// thread.
    bool capture(std::span<const std::int16_t> interleaved);

    /// Forgets the samples that wait and what has been gathered of a column. Capture thread.
    void forget();

    /// How many samples were never drawn because the lines asked for take longer than the sound they show.
    /// Any thread.
    std::int64_t droppedSamples() const { return droppedSamples_.load(std::memory_order_relaxed); }

    /// Makes capture() return after the line it is at, and take nothing in from then on, until resume(). A
    /// pass under way is given up. For the time a queue is being stopped, so that the window need not wait
    /// for the lines. Any thread.
    void interrupt() {
        interrupted_.store(1, std::memory_order_relaxed);
        interruptions_.fetch_add(1, std::memory_order_relaxed);
    }
    void resume() { interrupted_.store(0, std::memory_order_relaxed); }

private:
    /// A pass of overlapping lines, all of them with the numbers it began with.
    struct Pass {
        std::int32_t length = 0;
        std::int32_t speedup = 0;
        std::int32_t hop = 0;
        std::int32_t keep = 0;
        bool isSlow = false;   ///< its lines are gathered, not drawn
        std::int32_t next = 0; ///< line

        bool isUnderWay() const { return next < speedup; }
    };

    bool interrupted() const { return interrupted_.load(std::memory_order_relaxed) != 0; }
    bool hasToStop() const { return interrupted() || clock_() >= deadline_; }
    bool isHeld() const;
    bool paused();
    void take(std::span<const std::int16_t> interleaved);
    void drop(std::int32_t samples);
    void produceAllLines();

    /// Turns `length` samples of the ring, which holds as many, into a line, or begins a pass with them.
    void ProduceWaterfallLines(std::int32_t length);
    void continuePass();
    void abandonPass(); ///< and goes on with fresh samples
    void draw(std::int32_t length, std::int32_t samples, std::int32_t offset, std::int32_t scroll);
    void gather(std::int32_t length, std::int32_t samples);
    ColumnSource source(double samples) const;

    WaterfallParameters& parameters_;
    WaterfallImage& image_;
    const Clock clock_;
    SampleRing ring_;
    ChannelFold channel_ = ChannelFold::Sum; ///< of what is in the ring
    WaterfallFrames frames_;
    Pass pass_;
    SlowColumn slowColumn_;
    std::chrono::steady_clock::time_point deadline_; ///< of the lines for this buffer
    bool drewLines_ = false;
    std::atomic<std::int64_t> droppedSamples_{0};
    std::atomic<std::int32_t> interrupted_{0};
    std::atomic<std::int32_t> interruptions_{0}; ///< ever; wraps around
    std::int32_t knownInterruptions_ = 0;        ///< capture thread
};

} // namespace sonotrace
