#include "platform/pulse/PulseConnection.h"

#include <utility>

namespace sonotrace {

namespace {
constexpr pa_usec_t kRetryInterval = 200 * PA_USEC_PER_MSEC;
}

PulseConnection::PulseConnection(Events events)
    : events_(std::move(events)), loop_(pa_threaded_mainloop_new()) {}

PulseConnection::~PulseConnection() {
    stop();
}

void PulseConnection::start() {
    const PulseLock lock(loop_.get());
    connect();
    running_ = pa_threaded_mainloop_start(loop_.get()) == 0;
}

void PulseConnection::stop() {
    if (!running_)
        return;
    {
        const PulseLock lock(loop_.get());
        if (retry_)
            pa_threaded_mainloop_get_api(loop_.get())->time_free(retry_);
        retry_ = nullptr;
        if (context_) {
            pa_context_set_state_callback(context_.get(), nullptr, nullptr);
            pa_context_disconnect(context_.get());
        }
        context_.reset();
    }
    pa_threaded_mainloop_stop(loop_.get());
    running_ = false;
}

pa_context* PulseConnection::context() const {
    return context_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY ? context_.get() : nullptr;
}

void PulseConnection::connect() {
    const PulseProplist properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Sonotrace");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "sonotrace");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "sonotrace");
    context_.reset(pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop_.get()), "Sonotrace",
                                                properties.get()));
    pa_context_set_state_callback(
        context_.get(), [](pa_context*, void* self) { static_cast<PulseConnection*>(self)->onState(); },
        this);
    if (pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0)
        retryLater();
}

void PulseConnection::onState() {
    switch (pa_context_get_state(context_.get())) {
    case PA_CONTEXT_READY:
        events_.connected(*context_);
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        events_.disconnected();
        retryLater(); // not at once: this runs inside the context that is to be replaced
        break;
    default:
        break;
    }
}

void PulseConnection::retryLater() {
    if (retry_)
        return;
    timeval when;
    pa_timeval_add(pa_gettimeofday(&when), kRetryInterval);
    retry_ = pa_threaded_mainloop_get_api(loop_.get())
                 ->time_new(
                     pa_threaded_mainloop_get_api(loop_.get()), &when,
                     [](pa_mainloop_api* api, pa_time_event* event, const timeval*, void* data) {
                         auto& self = *static_cast<PulseConnection*>(data);
                         api->time_free(event);
                         self.retry_ = nullptr;
                         self.connect();
                     },
                     this);
}

} // namespace sonotrace
