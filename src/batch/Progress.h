#pragma once

#include <chrono>
#include <optional>

namespace sonotrace {

/// A line on the terminal about work that takes longer than a second. Where standard error is none, nothing.
class Progress {
public:
    /// `total` in seconds of sound; nothing where the end is not known.
    explicit Progress(std::optional<double> total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// So many seconds of sound are done.
    void update(double done);

private:
    using Clock = std::chrono::steady_clock;

    const std::optional<double> total_;
    const bool isSeen_;
    const Clock::time_point start_ = Clock::now();
    Clock::time_point next_;
    bool isDrawn_ = false;
};

} // namespace sonotrace
