#pragma once

#include <atomic>
#include <cstdint>

namespace sonotrace {

/// What the sweep is to do. The window thread writes, the audio thread reads; at the end of a one-shot pass
/// the audio thread writes the three switches that say so. One instance, owned by the main controller.
struct SweepParameters {
    std::atomic<std::int32_t> enabled{0};
    std::atomic<double> startFrequency{0}; ///< Hz
    std::atomic<double> endFrequency{0};   ///< Hz
    std::atomic<double> rate{0};           ///< linear: Hz a second; log: the law's own unit
    std::atomic<double> amplitudeLeft{0};  ///< linear, 1.0 is full scale
    std::atomic<double> amplitudeRight{0};
    std::atomic<std::int32_t> leftEnabled{0};
    std::atomic<std::int32_t> rightEnabled{0};
    std::atomic<std::int32_t> reverse{0};
    std::atomic<std::int32_t> log{0};
    std::atomic<std::int32_t> oneShot{0};
    std::atomic<std::int32_t> done{0};

    /// Where the sweep is, Hz; written at the end of every buffer.
    std::atomic<double> currentFrequency{0};

    /// Asks the render to jump to the start frequency at its next buffer. It runs the current frequency, so
    /// that nobody else may set it while a buffer is made.
    std::atomic<std::int32_t> restart{0};

    /// Starts a one-shot pass from the start frequency. Window thread.
    void startOneShot() {
        // The restart first: a render that sees the pass sees it too, and does not end the pass with the old
        // one.
        restart.store(1, std::memory_order_relaxed);
        done.store(0, std::memory_order_relaxed);
        oneShot.store(1, std::memory_order_release);
        enabled.store(1, std::memory_order_release);
    }
};

} // namespace sonotrace
