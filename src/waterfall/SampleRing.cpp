#include "waterfall/SampleRing.h"

#include "base/WideVectors.h"

namespace sonotrace {

namespace {

SONOTRACE_WIDE_VECTORS void foldFrames(const std::int16_t* interleaved, std::size_t frames,
                                       ChannelFold channel, std::int16_t* folded) {
    const auto all = [=](ChannelFold fold) {
        for (std::size_t i = 0; i < frames; ++i)
            folded[i] = foldSamples(fold, interleaved[2 * i], interleaved[2 * i + 1]);
    };
    switch (channel) { // a loop for each: it is the same for all frames
    case ChannelFold::Left:
        return all(ChannelFold::Left);
    case ChannelFold::Right:
        return all(ChannelFold::Right);
    case ChannelFold::Difference:
        return all(ChannelFold::Difference);
    case ChannelFold::Sum:
        break;
    }
    all(ChannelFold::Sum);
}

} // namespace

void SampleRing::fold(std::span<const std::int16_t> interleaved, ChannelFold channel) {
    for (std::size_t frames = interleaved.size() / 2; frames > 0;) {
        const auto index = static_cast<std::size_t>(ringWriteIndex_);
        const std::size_t part = std::min(frames, kSamples - index);
        foldFrames(interleaved.data(), part, channel, &waterfallRing_[index]);
        interleaved = interleaved.subspan(2 * part);
        ringWriteIndex_ = static_cast<std::int32_t>((index + part) % kSamples);
        frames -= part;
    }
}

std::int32_t SampleRing::available() const {
    const std::int32_t count = ringWriteIndex_ - ringReadIndex_;
    return count < 0 ? count + kSamples : count;
}

} // namespace sonotrace
