#pragma once

#include "platform/pulse/PulseHandles.h"

#include <functional>

namespace sonotrace {

/// A connection to the sound server on a thread of its own. When the server goes away it is tried again a few
/// times a second until it is back.
class PulseConnection {
public:
    /// Both run on the connection's thread, with its lock held.
    struct Events {
        std::function<void(pa_context& context)> connected;
        std::function<void()> disconnected;
    };

    explicit PulseConnection(Events events);
    ~PulseConnection(); ///< stops

    void start();

    /// Ends the thread. No event runs afterwards. Never waits for the server.
    void stop();

    pa_threaded_mainloop* loop() const { return loop_.get(); }

    /// The connected context, or null. With the lock held.
    pa_context* context() const;

private:
    void connect();
    void onState();
    void retryLater();

    const Events events_;
    PulseMainloop loop_;
    PulseContext context_;
    pa_time_event* retry_ = nullptr;
    bool running_ = false;
};

} // namespace sonotrace
