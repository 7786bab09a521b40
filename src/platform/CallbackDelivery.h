#pragma once

#include "platform/AudioQueue.h"
#include "platform/BufferQueue.h"
#include "platform/RunLoop.h"

namespace sonotrace {

/// Runs a queue's callback where its owner asked for it: at once on the calling thread, or on a run loop.
/// After cancel() no posted callback runs any more.
class CallbackDelivery : private RunLoop::Source {
public:
    /// `runLoop` may be null: the callback then runs inside deliver(). The run loop's thread.
    CallbackDelivery(AudioQueue& queue, AudioQueue::Callback callback, RunLoop* runLoop);
    ~CallbackDelivery();
    CallbackDelivery(const CallbackDelivery&) = delete;
    CallbackDelivery& operator=(const CallbackDelivery&) = delete;

    /// Hands `buffer` to the callback. The queue's thread.
    void deliver(AudioQueueBuffer& buffer);

    /// Drops what has been posted. The run loop's thread, after the queue's thread has stopped delivering.
    void cancel();

private:
    void run() override;

    AudioQueue& queue_;
    const AudioQueue::Callback callback_;
    RunLoop* const runLoop_;
    BufferRing posted_;
};

} // namespace sonotrace
