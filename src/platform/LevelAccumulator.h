#pragma once

#include "platform/AudioQueue.h"

#include <atomic>
#include <cstdint>
#include <span>

namespace sonotrace {

/// Measures the level of interleaved stereo samples between two readings. The queue's thread adds, the window
/// thread reads; neither waits for the other.
class LevelAccumulator {
public:
    /// Off until it is switched on: add() then costs nothing. Window thread.
    void enable(bool enabled) { enabled_.store(enabled, std::memory_order_relaxed); }

    /// Any thread.
    bool isEnabled() const { return enabled_.load(std::memory_order_relaxed); }

    /// The queue's thread.
    void add(std::span<const std::int16_t> interleaved);

    /// Average and peak magnitude of left and right, 1.0 for full scale, since the last reading; fills as
    /// many channels as there is room for. A reading before new samples have come repeats the last one, so
    /// that a meter that is read faster than fragments arrive does not flicker. Window thread.
    void read(std::span<LevelMeter> channels);

private:
    struct Channel {
        std::atomic<std::int32_t> peak{0};
        std::atomic<std::int64_t> sum{0};
    };
    std::atomic<bool> enabled_{false};
    Channel channels_[2];
    std::atomic<std::int64_t> frames_{0};
    LevelMeter last_[2];
};

} // namespace sonotrace
