#include "platform/LevelAccumulator.h"

#include <algorithm>
#include <cstdlib>

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr float kFullScale = 32768.0F;

void raise(std::atomic<std::int32_t>& peak, std::int32_t magnitude) {
    std::int32_t highest = peak.load(kRelaxed);
    while (highest < magnitude && !peak.compare_exchange_weak(highest, magnitude, kRelaxed)) {
    }
}

} // namespace

void LevelAccumulator::add(std::span<const std::int16_t> interleaved) {
    if (!enabled_.load(kRelaxed))
        return;
    std::int32_t peaks[2] = {0, 0};
    std::int64_t sums[2] = {0, 0};
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        for (std::size_t c = 0; c < 2; ++c) {
            const std::int32_t magnitude = std::abs(static_cast<std::int32_t>(interleaved[i + c]));
            peaks[c] = std::max(peaks[c], magnitude);
            sums[c] += magnitude;
        }
    }
    for (std::size_t c = 0; c < 2; ++c) {
        raise(channels_[c].peak, peaks[c]);
        channels_[c].sum.fetch_add(sums[c], kRelaxed);
    }
    frames_.fetch_add(static_cast<std::int64_t>(interleaved.size() / 2), kRelaxed);
}

void LevelAccumulator::read(std::span<LevelMeter> channels) {
    const auto frames = static_cast<float>(frames_.exchange(0, kRelaxed));
    if (frames > 0) {
        for (std::size_t c = 0; c < 2; ++c) {
            last_[c].averagePower =
                static_cast<float>(channels_[c].sum.exchange(0, kRelaxed)) / frames / kFullScale;
            last_[c].peakPower = static_cast<float>(channels_[c].peak.exchange(0, kRelaxed)) / kFullScale;
        }
    }
    std::copy_n(last_, std::min<std::size_t>(2, channels.size()), channels.begin());
}

} // namespace sonotrace
