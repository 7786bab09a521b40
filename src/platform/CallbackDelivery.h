#pragma once

#include "platform/AudioQueue.h"
#include "platform/RunLoop.h"

#include <atomic>
#include <memory>

namespace sonotrace {

/// Runs a queue's callback where its owner asked for it: at once on the calling thread, or posted to a run
/// loop. After cancel() no posted callback runs any more.
class CallbackDelivery {
public:
    /// `runLoop` may be null: the callback then runs inside deliver().
    CallbackDelivery(AudioQueue& queue, AudioQueue::Callback callback, RunLoop* runLoop);
    ~CallbackDelivery();
    CallbackDelivery(const CallbackDelivery&) = delete;
    CallbackDelivery& operator=(const CallbackDelivery&) = delete;

    /// Hands `buffer` to the callback. The queue's thread.
    void deliver(AudioQueueBuffer& buffer);

    /// Drops what has been posted. The run loop's thread, after the queue's thread has stopped delivering.
    void cancel();

private:
    struct Target;

    std::shared_ptr<Target> target_;
    RunLoop* runLoop_;
};

} // namespace sonotrace
