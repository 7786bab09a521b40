#pragma once

#include "base/ChannelFold.h"
#include "base/ZeroedArray.h"

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

    std::int16_t next() {
        const std::int16_t sample = waterfallRing_[static_cast<std::size_t>(ringReadIndex_)];
        ringReadIndex_ = after(ringReadIndex_);
        return sample;
    }

    /// Forgets what waits.
    void dropWaiting() { ringReadIndex_ = ringWriteIndex_; }

private:
    static std::int32_t after(std::int32_t index) { return index == kSamples - 1 ? 0 : index + 1; }

    ZeroedArray<std::int16_t> waterfallRing_{kSamples};
    std::int32_t ringWriteIndex_ = 0;
    std::int32_t ringReadIndex_ = 0;
};

} // namespace sonotrace
