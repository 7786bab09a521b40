#pragma once

#include "platform/StreamDescription.h"
#include "scope/ScopeControls.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace sonotrace {

/// Samples of a complete block, half a second.
inline constexpr std::size_t kScopeBlock = 22050;

/// One channel of a block.
using ScopeSamples = std::span<const std::int16_t, kScopeBlock>;

/// Samples of it that are signal: its first buffer.
inline constexpr std::size_t kScopeSignal = kCaptureFramesPerBuffer;

/// What makes shown samples of captured ones.
struct ScopeScaling {
    double gain = 1.0;
    bool invert = false; ///< as in ScopeControls
};

/// Collects captured stereo into blocks for the display, each channel with the gain of its range. It goes on
/// where it was when the stream is restarted. Window thread.
class ScopeCapture {
public:
    /// `controls` are read once a buffer; `redisplay` is called from within capture() for each complete
    /// block.
    ScopeCapture(const ScopeControls& controls, std::function<void()> redisplay);

    /// Takes one buffer of interleaved frames; frames beyond the buffers' usual 11025 are ignored.
    void capture(std::span<const std::int16_t> interleaved);

    /// The last complete block of a channel: a buffer's length of signal, upside down unless the channel's
    /// invert control is set, and zeros behind it.
    ScopeSamples display(std::int32_t ch) const { return channel(ch).display; }

    /// The signal of that block as it came from the device, and how it is shown.
    std::span<const std::int16_t> raw(std::int32_t ch) const { return channel(ch).shownRaw; }
    const ScopeScaling& scaling(std::int32_t ch) const { return channel(ch).shownScaling; }

    /// Blocks shown so far.
    std::int64_t blocks() const { return blocks_; }

    /// While it holds, the block that is shown stays: others are passed over.
    void hold(bool holds) { holds_ = holds; }
    bool holds() const { return holds_; }

private:
    struct Channel {
        std::vector<std::int16_t> captured; ///< as scaled
        std::array<std::int16_t, kScopeBlock> display{};
        std::vector<std::int16_t> raw; ///< as it came
        std::vector<std::int16_t> shownRaw;
        ScopeScaling scaling;
        ScopeScaling shownScaling;
    };

    const Channel& channel(std::int32_t ch) const { return channels_[ch == 0 ? 0 : 1]; }
    void completeBlock(std::size_t frames);

    const ScopeControls& controls_;
    const std::function<void()> redisplay_;
    std::array<Channel, 2> channels_;
    std::size_t captureIndex_ = 0; ///< where the next buffer goes
    std::int64_t blocks_ = 0;
    bool holds_ = false;
};

} // namespace sonotrace
