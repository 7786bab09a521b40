#include "batch/Progress.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace sonotrace {

namespace {
constexpr std::chrono::seconds kPatience{1};
constexpr std::chrono::milliseconds kInterval{100};
constexpr int kBarWidth = 40;
} // namespace

Progress::Progress(std::optional<double> total)
    : total_(total), isSeen_(isatty(STDERR_FILENO) == 1), next_(start_ + kPatience) {}

Progress::~Progress() {
    if (isDrawn_)
        std::fputs("\r\033[K", stderr);
}

void Progress::update(double done) {
    const auto now = Clock::now();
    if (!isSeen_ || now < next_)
        return;
    next_ = now + kInterval;
    isDrawn_ = true;
    if (!total_) {
        std::fprintf(stderr, "\r%.0f s of sound\033[K", done);
        return;
    }
    const double part = std::clamp(done / *total_, 0.0, 1.0);
    const double passed = std::chrono::duration<double>(now - start_).count();
    std::string bar(static_cast<std::size_t>(part * kBarWidth), '#');
    bar.resize(kBarWidth, '.');
    const double left = part > 0.0 ? passed / part - passed : 0.0;
    std::fprintf(stderr, "\r[%s] %3.0f %%  %.0f s left\033[K", bar.c_str(), part * 100.0, left);
}

} // namespace sonotrace
