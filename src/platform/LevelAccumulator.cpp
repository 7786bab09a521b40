#include "platform/LevelAccumulator.h"

#include <algorithm>
#include <cstdlib>

namespace sonotrace {

namespace {
constexpr float kFullScale = 32768.0F;
}

void LevelAccumulator::add(std::span<const std::int16_t> interleaved) {
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        for (std::size_t c = 0; c < 2; ++c) {
            const std::int32_t magnitude = std::abs(static_cast<std::int32_t>(interleaved[i + c]));
            channels_[c].peak = std::max(channels_[c].peak, magnitude);
            channels_[c].sum += magnitude;
        }
        ++frames_;
    }
}

void LevelAccumulator::read(std::span<LevelMeter> channels) {
    if (frames_ > 0) {
        for (std::size_t c = 0; c < 2; ++c) {
            last_[c].averagePower =
                static_cast<float>(channels_[c].sum) / static_cast<float>(frames_) / kFullScale;
            last_[c].peakPower = static_cast<float>(channels_[c].peak) / kFullScale;
            channels_[c] = {};
        }
        frames_ = 0;
    }
    std::copy_n(last_, std::min<std::size_t>(2, channels.size()), channels.begin());
}

} // namespace sonotrace
