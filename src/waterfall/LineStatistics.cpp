#include "waterfall/LineStatistics.h"

#include "base/SystemLog.h"

namespace sonotrace {

void LineStatisticsLog::add(const LineStatistics& statistics) {
    const std::uint32_t written = written_.load(std::memory_order_relaxed);
    if (written - read_.load(std::memory_order_acquire) == kCapacity) {
        lost_.store(lost_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        return;
    }
    lines_[written % kCapacity] = statistics;
    written_.store(written + 1, std::memory_order_release);
}

void LineStatisticsLog::writeLog() {
    const std::uint32_t written = written_.load(std::memory_order_acquire);
    std::uint32_t read = read_.load(std::memory_order_relaxed);
    for (; read != written; ++read) {
        const LineStatistics& line = lines_[read % kCapacity];
        systemLog("minSum:%g  maxSum:%g  minV:%g  maxV:%g", line.minSum, line.maxSum, line.minV, line.maxV);
    }
    read_.store(read, std::memory_order_release);
}

} // namespace sonotrace
