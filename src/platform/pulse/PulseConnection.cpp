#include "platform/pulse/PulseConnection.h"

#include <utility>

namespace sonotrace {

namespace {
constexpr pa_usec_t kRetryInterval = 200 * PA_USEC_PER_MSEC;
}

PulseConnection::PulseConnection(Events events, FirstAttempt firstAttempt)
    : events_(std::move(events)),
      attempt_(firstAttempt),
      loop_(pa_threaded_mainloop_new()),
      retry_(loop_.get(), [this] { connect(); }) {}

PulseConnection::~PulseConnection() {
    stop();
}

bool PulseConnection::start() {
    if (!loop_)
        return false;
    const PulseLock lock(loop_.get());
    retry_.start(0);
    running_ = pa_threaded_mainloop_start(loop_.get()) == 0;
    return running_;
}

void PulseConnection::stop() {
    if (!running_)
        return;
    {
        const PulseLock lock(loop_.get());
        retry_.cancel();
        if (context_)
            events_.disconnected();
        disconnect();
    }
    pa_threaded_mainloop_stop(loop_.get());
    running_ = false;
}

void PulseConnection::reconnect() {
    retry_.start(kRetryInterval);
}

pa_context* PulseConnection::context() const {
    return context_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY ? context_.get() : nullptr;
}

void PulseConnection::connect() {
    if (context_) {
        events_.disconnected();
        disconnect();
    }
    const PulseProplist properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Sonotrace");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "sonotrace");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "sonotrace");
    context_.reset(pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop_.get()), "Sonotrace",
                                                properties.get()));
    if (!context_) {
        reconnect();
        return;
    }
    pa_context_set_state_callback(
        context_.get(), [](pa_context*, void* self) { static_cast<PulseConnection*>(self)->onState(); },
        this);
    // Launching a server holds the lock until it is up, so only the very first attempt may do it, when nobody
    // has a reason yet to take the lock.
    const bool mayLaunch =
        std::exchange(attempt_, FirstAttempt::OnlyConnects) == FirstAttempt::MayLaunchServer;
    if (pa_context_connect(context_.get(), nullptr, mayLaunch ? PA_CONTEXT_NOFLAGS : PA_CONTEXT_NOAUTOSPAWN,
                           nullptr) < 0)
        reconnect();
}

void PulseConnection::disconnect() {
    if (!context_)
        return;
    pa_context_set_state_callback(context_.get(), nullptr, nullptr);
    pa_context_disconnect(context_.get());
    context_.reset();
}

void PulseConnection::onState() {
    switch (pa_context_get_state(context_.get())) {
    case PA_CONTEXT_READY:
        events_.connected(*context_);
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        events_.disconnected();
        reconnect(); // not at once: this runs inside the context that is to be replaced
        break;
    default:
        break;
    }
}

} // namespace sonotrace
