#pragma once

#include "platform/pulse/PulseHandles.h"

#include <functional>

namespace sonotrace {

/// Does something once, a while later, on a main loop's thread and with its lock held; without a main loop
/// never. All methods with the lock held; the loop outlives the timer.
class PulseTimer {
public:
    PulseTimer(pa_threaded_mainloop* loop, std::function<void()> action);
    ~PulseTimer(); ///< the loop's thread has ended or the timer is idle
    PulseTimer(const PulseTimer&) = delete;
    PulseTimer& operator=(const PulseTimer&) = delete;

    /// A timer that runs already keeps its time.
    void start(pa_usec_t delay);
    void cancel();

private:
    pa_mainloop_api* const api_;
    const std::function<void()> action_;
    pa_time_event* event_ = nullptr;
};

} // namespace sonotrace
