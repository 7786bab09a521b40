#include "waterfall/SampleRing.h"

namespace sonotrace {

void SampleRing::fold(std::span<const std::int16_t> interleaved, ChannelFold channel) {
    std::int32_t index = ringWriteIndex_;
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        waterfallRing_[static_cast<std::size_t>(index)] =
            foldSamples(channel, interleaved[i], interleaved[i + 1]);
        index = after(index);
    }
    ringWriteIndex_ = index;
}

std::int32_t SampleRing::available() const {
    const std::int32_t count = ringWriteIndex_ - ringReadIndex_;
    return count < 0 ? count + kSamples : count;
}

} // namespace sonotrace
