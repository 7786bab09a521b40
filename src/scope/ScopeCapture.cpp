#include "scope/ScopeCapture.h"

#include "base/Numbers.h"

#include <algorithm>
#include <utility>

namespace sonotrace {

namespace {

constexpr std::size_t kCaptureSamples = 40000; ///< a block and what a buffer may reach beyond it
constexpr double kFullScale = 32767.0;

/// A NaN, which only a gain that is no number makes, becomes 0.
std::int16_t scaled(std::int16_t sample, double gain) {
    return wrapToSample(truncateToInt32(std::clamp(sample * gain, -kFullScale, kFullScale)));
}

} // namespace

ScopeCapture::ScopeCapture(const ScopeControls& controls, std::function<void()> redisplay)
    : controls_(controls), redisplay_(std::move(redisplay)) {
    for (Channel& channel : channels_) {
        channel.captured.resize(kCaptureSamples);
        channel.raw.resize(kScopeSignal);
        channel.shownRaw.resize(kScopeSignal);
    }
}

void ScopeCapture::capture(std::span<const std::int16_t> interleaved) {
    const std::size_t frames =
        std::min<std::size_t>(interleaved.size() / 2, static_cast<std::size_t>(kCaptureFramesPerBuffer));
    for (std::size_t ch = 0; ch < channels_.size(); ++ch) {
        const double gain = controls_.range[ch];
        std::int16_t* const captured = channels_[ch].captured.data() + captureIndex_;
        for (std::size_t i = 0; i < frames; ++i)
            captured[i] = scaled(interleaved[2 * i + ch], gain);
        if (captureIndex_ == 0)
            channels_[ch].scaling.gain = gain;
        for (std::size_t i = captureIndex_; i < std::min(captureIndex_ + frames, kScopeSignal); ++i)
            channels_[ch].raw[i] = interleaved[2 * (i - captureIndex_) + ch];
    }
    captureIndex_ += frames;
    if (captureIndex_ >= kScopeBlock)
        completeBlock(frames);
}

/// Only the first buffer of a block is shown: the trace starts in it, and what lies behind its end is a flat
/// line.
void ScopeCapture::completeBlock(std::size_t frames) {
    captureIndex_ = 0;
    if (holds_)
        return;
    for (std::size_t ch = 0; ch < channels_.size(); ++ch) {
        Channel& channel = channels_[ch];
        const bool invert = controls_.invert[ch];
        for (std::size_t i = 0; i < frames; ++i) {
            const std::int16_t sample = channel.captured[i];
            channel.display[i] = invert ? sample : wrapToSample(-sample);
        }
        std::swap(channel.raw, channel.shownRaw);
        channel.shownScaling = {channel.scaling.gain, invert};
    }
    ++blocks_;
    redisplay_();
}

} // namespace sonotrace
