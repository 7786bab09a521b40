#pragma once

#include "platform/AudioQueue.h"

#include <cstdint>
#include <span>

namespace sonotrace {

/// Measures the level of interleaved stereo samples between two readings. Not synchronised: the queue that
/// owns it adds and reads under its own protection.
class LevelAccumulator {
public:
    void add(std::span<const std::int16_t> interleaved);

    /// Average and peak magnitude of left and right, 1.0 for full scale, since the last reading; fills as
    /// many channels as there is room for. A reading before new samples have come repeats the last one, so
    /// that a meter that is read faster than fragments arrive does not flicker.
    void read(std::span<LevelMeter> channels);

private:
    struct Channel {
        std::int32_t peak = 0;
        std::int64_t sum = 0;
    };
    Channel channels_[2];
    std::int64_t frames_ = 0;
    LevelMeter last_[2];
};

} // namespace sonotrace
