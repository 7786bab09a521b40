#include "platform/pulse/PulseTimer.h"

#include <utility>

namespace sonotrace {

PulseTimer::PulseTimer(pa_threaded_mainloop* loop, std::function<void()> action)
    : api_(loop ? pa_threaded_mainloop_get_api(loop) : nullptr), action_(std::move(action)) {}

PulseTimer::~PulseTimer() {
    cancel();
}

void PulseTimer::start(pa_usec_t delay) {
    if (event_ || !api_)
        return;
    timeval when;
    pa_timeval_add(pa_gettimeofday(&when), delay);
    event_ = api_->time_new(
        api_, &when,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* data) {
            auto& self = *static_cast<PulseTimer*>(data);
            self.cancel(); // first: the action may start the timer again
            self.action_();
        },
        this);
}

void PulseTimer::cancel() {
    if (event_)
        api_->time_free(event_);
    event_ = nullptr;
}

} // namespace sonotrace
