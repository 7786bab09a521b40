#pragma once

#include "base/ChannelFold.h"

#include <atomic>
#include <cstdint>
#include <span>

namespace sonotrace {

/// What the captured samples themselves say, in seconds of captured sound; infinite for never.
struct InputFindings {
    double sinceClipping; ///< since a channel last stood at full scale for three samples
    double sinceOverflow; ///< since what is analysed was last beyond 16 bits
    double sinceSound;    ///< since any sample was last other than 0
};

/// Watches what is captured for what makes its pictures wrong or empty. One thread adds, any may ask.
class InputWatch {
public:
    /// Takes a buffer of interleaved stereo. A finding lies at the end of its buffer.
    void add(std::span<const std::int16_t> interleaved);

    /// What is analysed of the two channels; their sum at first. Any thread.
    void setFold(ChannelFold fold) { fold_.store(fold, std::memory_order_relaxed); }

    /// Forgets all. Not while another thread adds.
    void restart();

    /// The time without sound counts from the first sample on.
    InputFindings findings() const;

private:
    std::atomic<ChannelFold> fold_{ChannelFold::Sum};
    std::atomic<std::int64_t> frames_{0}; ///< taken so far; the others as many as were at the last finding
    std::atomic<std::int64_t> clipping_{-1};
    std::atomic<std::int64_t> overflow_{-1};
    std::atomic<std::int64_t> sound_{0};
};

} // namespace sonotrace
