#pragma once

#include <atomic>
#include <cstdint>

namespace sonotrace {

/// A logarithmic sweep grows each second by this part of its frequency, times the rate; below 1 Hz as at 1
/// Hz.
inline constexpr double kSweepLogLaw = 0.00046417;

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
        // In this order, and in the same one for all threads: see endPass().
        restart.store(1);
        done.store(0);
        oneShot.store(1);
        enabled.store(1);
    }

    /// Ends a one-shot pass, unless the user has started a new one meanwhile. Audio thread.
    void endPass() {
        enabled.store(0);
        done.store(1);
        oneShot.store(0);
        if (restart.load() != 0) // what else it has stored may have come before the above and be lost
            startOneShot();
    }
};

} // namespace sonotrace
