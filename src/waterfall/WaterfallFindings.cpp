#include "waterfall/WaterfallFindings.h"

#include "base/SampleRate.h"

#include <algorithm>

namespace sonotrace {

WaterfallFindings findingsOf(const WaterfallParameters& parameters) {
    constexpr auto kRelaxed = std::memory_order_relaxed;
    const std::int32_t speedup = parameters.waterfallSpeedup.load(kRelaxed);
    const std::int32_t log2 =
        std::clamp(parameters.fftSizeLog2.load(kRelaxed), kSmallestLog2Length, kLargestLog2Length);
    const double start = parameters.waterfallStartFreq.load(kRelaxed);
    const double end = parameters.waterfallEndFreq.load(kRelaxed);
    return {.isPaused = speedup <= 0 || speedup > std::max(parameters.frameLength(), 1 << log2),
            .hasEqualLevels =
                parameters.waterfallMinDB.load(kRelaxed) == parameters.waterfallMaxDB.load(kRelaxed),
            .hasEqualLimits = start == end,
            .showsOldRows = std::max(start, end) > kSampleRate / 2.0};
}

} // namespace sonotrace
