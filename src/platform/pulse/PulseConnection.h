#pragma once

#include "platform/pulse/PulseHandles.h"
#include "platform/pulse/PulseTimer.h"

#include <functional>

namespace sonotrace {

/// A connection to the sound server on a thread of its own. When the server goes away it is tried again a few
/// times a second until it is back.
class PulseConnection {
public:
    /// Both run with the connection's lock held, on its thread; the last disconnected() on that of stop(). A
    /// connection may be reported disconnected more than once.
    struct Events {
        std::function<void(pa_context& context)> connected;
        std::function<void()> disconnected;
    };

    /// What to do when no server runs.
    enum class FirstAttempt {
        MayLaunchServer, ///< where users are set up so, the client library launches one; that takes a while
        OnlyConnects,
    };

    PulseConnection(Events events, FirstAttempt firstAttempt);
    ~PulseConnection(); ///< stops

    /// At most once. Connecting itself happens on the connection's thread. False, and nothing happens, when
    /// the system has no descriptor or thread left for it.
    bool start();

    /// Disconnects, which is the last event, and ends the thread. Never waits for the server.
    void stop();

    /// Gives up the present connection, which has become useless, and makes a new one in a moment. With the
    /// lock held.
    void reconnect();

    /// Null when the system had no descriptor left.
    pa_threaded_mainloop* loop() const { return loop_.get(); }

    /// The connected context, or null. With the lock held.
    pa_context* context() const;

private:
    void connect();
    void disconnect();
    void onState();

    const Events events_;
    FirstAttempt attempt_;
    PulseMainloop loop_;
    PulseTimer retry_;
    PulseContext context_;
    bool running_ = false;
};

} // namespace sonotrace
