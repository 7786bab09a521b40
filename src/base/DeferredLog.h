#pragma once

#include "base/Ring.h"

#include <array>
#include <cstdint>

namespace sonotrace {

/// What is to be logged as an audio thread leaves it: numbers, and how to put them into words.
struct LogRecord {
    using Values = std::array<double, 4>;
    void (*write)(const Values& values) = nullptr; ///< to the system log
    Values values{};
};

/// Carries log records from an audio thread, which must not format or write text, to the window thread, which
/// does.
class DeferredLog {
public:
    static constexpr std::uint32_t kCapacity = 16384; ///< more lines than the waterfall makes of a buffer

    /// Keeps a record, or leaves it out when the window thread lags behind. Audio thread.
    void add(const LogRecord& record) { records_.push(record); }

    /// Writes the records kept since the last call, in order. Window thread.
    void write() {
        for (std::uint32_t count = records_.size(); count > 0; --count, records_.pop())
            records_[0].write(records_[0].values);
    }

private:
    Ring<LogRecord, kCapacity> records_;
};

} // namespace sonotrace
