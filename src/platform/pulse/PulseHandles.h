#pragma once

#include <pulse/pulseaudio.h>

#include <memory>

namespace sonotrace {

struct PulseDeleter {
    void operator()(pa_threaded_mainloop* loop) const { pa_threaded_mainloop_free(loop); }
    void operator()(pa_context* context) const { pa_context_unref(context); }
    void operator()(pa_stream* stream) const { pa_stream_unref(stream); }
    void operator()(pa_proplist* list) const { pa_proplist_free(list); }
};

using PulseMainloop = std::unique_ptr<pa_threaded_mainloop, PulseDeleter>;
using PulseContext = std::unique_ptr<pa_context, PulseDeleter>;
using PulseStream = std::unique_ptr<pa_stream, PulseDeleter>;
using PulseProplist = std::unique_ptr<pa_proplist, PulseDeleter>;

/// Holds a main loop's lock, if there is a main loop; on the loop's own thread, which holds it already, it
/// does nothing. The loop never waits for the server with it, but it holds it while a queue's callback runs.
class PulseLock {
public:
    explicit PulseLock(pa_threaded_mainloop* loop)
        : loop_(!loop || pa_threaded_mainloop_in_thread(loop) ? nullptr : loop) {
        if (loop_)
            pa_threaded_mainloop_lock(loop_);
    }
    ~PulseLock() {
        if (loop_)
            pa_threaded_mainloop_unlock(loop_);
    }
    PulseLock(const PulseLock&) = delete;
    PulseLock& operator=(const PulseLock&) = delete;

private:
    pa_threaded_mainloop* const loop_;
};

/// Lets go of an operation whose answer comes by callback.
inline void forget(pa_operation* operation) {
    if (operation)
        pa_operation_unref(operation);
}

} // namespace sonotrace
