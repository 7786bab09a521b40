#pragma once

#include "base/ChannelFold.h"
#include "base/FftWindows.h"
#include "base/SampleRate.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

namespace sonotrace {

inline constexpr std::int32_t kSmallestLog2Length = 6; ///< 64 samples
inline constexpr std::int32_t kLargestLog2Length = 17; ///< 131072 samples
inline constexpr std::int32_t kLargestFrameLength = 1 << kLargestLog2Length;

/// How the lines of a slow column become one, bin by bin; position in the window's menu.
enum class LineMerge : std::int32_t { Peak, PowerMean };

inline constexpr std::array<const char*, 2> kLineMergeTitles = {"Maximum", "Power mean"};

// A shorter time is what the speed-up is for, and pictures that are saved when they are full would follow
// each other in no time.
inline constexpr double kLeastSlowSeconds = 0.1;
inline constexpr double kMostSlowSeconds = 86400.0;

/// What the controls of the waterfall window say, shared with the capture thread. One value, one atomic: no
/// value depends on another one being of the same moment, so relaxed loads and stores are enough.
struct WaterfallParameters {
    /// Transform length N in samples. Set from the window's menu at start-up, then by the transform.
    std::atomic<double> waterfallFftLen{8192.0};
    std::atomic<std::int32_t> fftSizeLog2{7};          ///< requested log2 of N (window thread)
    std::atomic<std::int32_t> log2SampleLength{0};     ///< the one in force (capture thread), 0 at first
    std::atomic<std::int32_t> waterfallSpeedup{1};     ///< lines per N samples; 0 and below pause the picture
    std::atomic<FftWindowType> waterfallWindowType{1}; ///< position in the window menu
    std::atomic<float> waterfallMinDB{50.0F};          ///< floor of the colour scale
    std::atomic<float> waterfallMaxDB{100.0F};         ///< ceiling of the colour scale
    std::atomic<std::int32_t> colorWaterfallPlot{1};   ///< 0: grey, otherwise colour
    std::atomic<double> waterfallStartFreq{0.0};       ///< Hz, bottom of the picture
    std::atomic<double> waterfallEndFreq{0.0};         ///< Hz, top of the picture
    std::atomic<double> waterfallGain{0.0};            ///< kept and saved only
    std::atomic<double> waterfallReceiverkHz{0.0};     ///< kept and saved only
    std::atomic<ChannelFold> channel{ChannelFold::Sum};
    std::atomic<std::int32_t> paused{0};               ///< by the button, whatever the speed-up
    std::atomic<double> slowSeconds{0.0};              ///< a column; 0 and below: a column is a line
    double leastSlowSeconds = kLeastSlowSeconds;       ///< set before lines are drawn
    std::atomic<LineMerge> lineMerge{LineMerge::Peak}; ///< of the lines of a slow column

    std::int32_t onlyLog2Length = 0; ///< set before the analysis is made: no other length comes; 0: any may

    /// N as a number of samples that fits every buffer, whatever is stored. Any thread.
    std::int32_t frameLength() const {
        const double length = waterfallFftLen.load(std::memory_order_relaxed);
        if (!(length > 0.0)) // also not a number
            return 0;
        return static_cast<std::int32_t>(std::min(length, static_cast<double>(kLargestFrameLength)));
    }

    /// Samples that a slow column stands for, 0 while a column is a line. Any thread.
    double slowSamples() const {
        const double seconds = slowSeconds.load(std::memory_order_relaxed);
        if (!(seconds > 0.0)) // also not a number
            return 0.0;
        return std::clamp(seconds, leastSlowSeconds, kMostSlowSeconds) * kSampleRate;
    }
};

static_assert(std::atomic<double>::is_always_lock_free && std::atomic<float>::is_always_lock_free &&
              std::atomic<std::int32_t>::is_always_lock_free &&
              std::atomic<ChannelFold>::is_always_lock_free && std::atomic<LineMerge>::is_always_lock_free);

} // namespace sonotrace
