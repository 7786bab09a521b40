#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace sonotrace {

/// Extremes of one line. The start values are what a line logs that could not be painted.
struct LineStatistics {
    double minSum = 9999999.0; ///< smallest magnitude
    double maxSum = 0.0;       ///< largest magnitude
    double minV = 999.0;       ///< lowest level
    double maxV = 0.0;         ///< highest level

    /// Not a number is no extreme.
    void addMagnitude(double magnitude) {
        minSum = magnitude < minSum ? magnitude : minSum;
        maxSum = magnitude > maxSum ? magnitude : maxSum;
    }
    void addLevel(double level) {
        minV = level < minV ? level : minV;
        maxV = level > maxV ? level : maxV;
    }
};

/// Carries the statistics of each line from the capture thread, which must not format or write text, to the
/// window thread, which writes one log line for each. One writer, one reader, no locks.
class LineStatisticsLog {
public:
    static constexpr std::uint32_t kCapacity = 16384; ///< more lines than a buffer of samples is

    /// Keeps a line's statistics, or counts the line as lost when the window thread lags behind. Capture
    /// thread.
    void add(const LineStatistics& statistics);

    /// Writes a log line for each line kept since the last call. Window thread.
    void writeLog();

    /// Lines that were never logged because there was no room. Any thread.
    std::uint32_t lost() const { return lost_.load(std::memory_order_relaxed); }

private:
    std::array<LineStatistics, kCapacity> lines_{};
    std::atomic<std::uint32_t> written_{0}; ///< lines ever added; wraps around
    std::atomic<std::uint32_t> read_{0};    ///< lines ever logged; wraps around
    std::atomic<std::uint32_t> lost_{0};
};

static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
static_assert((LineStatisticsLog::kCapacity & (LineStatisticsLog::kCapacity - 1)) == 0,
              "the counters wrap around at a multiple of the capacity");

} // namespace sonotrace
