#pragma once

#include "base/ChannelFold.h"
#include "base/ZeroedArray.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace sonotrace {

/// The captured input as one channel, about eleven seconds of it. Capture thread only: the callback that
/// writes is the one that reads.
class SampleRing {
public:
    static constexpr std::int32_t kSamples = 500000;

    /// Appends a sample a frame, what the channels are made into, from interleaved stereo.
    void fold(std::span<const std::int16_t> interleaved, ChannelFold channel);

    /// Samples that wait to be read, 0 to 499999.
    std::int32_t available() const;

    /// Samples that can be appended before the oldest are overwritten.
    std::int32_t room() const { return kSamples - 1 - available(); }

    /// Takes `count` samples, of those that wait: calls with the number of the first one and a span of them,
    /// once or twice.
    template <typename Function>
    void take(std::size_t count, Function function) {
        for (std::size_t done = 0; done < count;) {
            const auto index = static_cast<std::size_t>(ringReadIndex_);
            const std::size_t part = std::min(count - done, kSamples - index);
            function(done, std::span<const std::int16_t>(&waterfallRing_[index], part));
            ringReadIndex_ = static_cast<std::int32_t>((index + part) % kSamples);
            done += part;
        }
    }

    /// Forgets what waits.
    void dropWaiting() { ringReadIndex_ = ringWriteIndex_; }

private:
    ZeroedArray<std::int16_t> waterfallRing_{kSamples};
    std::int32_t ringWriteIndex_ = 0;
    std::int32_t ringReadIndex_ = 0;
};

} // namespace sonotrace
