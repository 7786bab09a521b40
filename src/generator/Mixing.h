#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace sonotrace {

/// Linear gains of one voice.
struct StereoGain {
    double left = 0;
    double right = 0;
};

/// Frames that are mixed at a time: few enough for what all voices make of them to stay in the cache. A
/// multiple of four.
inline constexpr std::size_t kMixFrames = 248;

/// What a voice makes of them.
using MixValues = std::array<double, kMixFrames>;

/// Frames of the output while voices are added to them: their samples as doubles, a channel at a time.
struct MixBlock {
    alignas(32) MixValues left;
    alignas(32) MixValues right;
};

void load(MixBlock& block, std::span<const std::int16_t> interleaved);
void store(const MixBlock& block, std::span<std::int16_t> interleaved);

/// Adds value x gain to each channel: summed in double, truncated toward zero, wrapped to 16 bits. `fits`
/// says that no sum has to be wrapped; without it, gains may be anything.
void mix(MixBlock& block, const MixValues& values, std::size_t frames, StereoGain gain, bool fits);

/// Adds the low 15 bits of a draw x gain to each sample in the same way. Gains may be anything.
void mixDraws(std::span<std::int16_t> interleaved, const std::uint32_t* draws, StereoGain gain);

/// Adds noise values of about -1 to 1: each contribution, value x gain x 32768, is clamped to +-32767 before
/// it is added as an integer. Gains may be anything.
void mixClamped(std::span<std::int16_t> interleaved, const MixValues& values, StereoGain gain);

/// Negates every sample; -32768 stays as it is.
void negate(std::span<std::int16_t> samples);

} // namespace sonotrace
