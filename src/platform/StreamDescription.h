#pragma once

#include "base/SampleRate.h"

#include <cstdint>

namespace sonotrace {

/// The one stream format of the program: interleaved stereo, signed packed 16-bit samples at 44.1 kHz,
/// followed by the number of frames one buffer holds.
struct StreamDescription {
    double sampleRate = kSampleRate;     ///< frames per second
    std::uint32_t formatId = 0x6C70636D; ///< 'lpcm', linear PCM
    std::uint32_t formatFlags = 12;      ///< signed integer, packed
    std::uint32_t bytesPerPacket = 4;
    std::uint32_t framesPerPacket = 1;
    std::uint32_t bytesPerFrame = 4;
    std::uint32_t channelsPerFrame = 2; ///< left first
    std::uint32_t bitsPerChannel = 16;
    std::int32_t frameCount = 0; ///< frames per buffer

    /// Bytes of one full buffer.
    std::uint32_t bufferBytes() const { return bytesPerFrame * static_cast<std::uint32_t>(frameCount); }
};

inline constexpr std::int32_t kOutputFramesPerBuffer = 5000;   ///< about 113 ms
inline constexpr std::int32_t kCaptureFramesPerBuffer = 11025; ///< a quarter of a second
inline constexpr int kBuffersPerQueue = 3;

} // namespace sonotrace
