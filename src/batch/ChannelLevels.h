#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace sonotrace {

/// What the samples of one channel come to, in the unit of 16-bit samples.
struct ChannelLevel {
    double peak = 0; ///< the largest magnitude
    double rms = 0;
    std::uint64_t clips = 0; ///< how often it stood at full scale for three samples or more

    /// 0 dBFS is a sine with a peak of 32768: minus infinity for silence.
    double peakDbfs() const;
    double rmsDbfs() const;
};

/// Measures both channels of interleaved stereo, piece by piece. One thread.
class ChannelLevels {
public:
    void add(std::span<const std::int16_t> interleaved);
    void add(std::span<const double> interleaved);

    std::uint64_t frames() const { return frames_; }
    ChannelLevel left() const { return level(0); }
    ChannelLevel right() const { return level(1); }

private:
    template <typename Sample>
    void countClips(std::span<const Sample> interleaved);
    ChannelLevel level(std::size_t channel) const;

    std::uint64_t frames_ = 0;
    std::array<double, 2> peaks_{};
    std::array<double, 2> squares_{};
    std::array<std::uint64_t, 2> clips_{};
    std::array<int, 2> runs_{}; ///< samples that have been at full scale up to now
};

} // namespace sonotrace
