#include "platform/CallbackDelivery.h"

#include <utility>

namespace sonotrace {

CallbackDelivery::CallbackDelivery(AudioQueue& queue, AudioQueue::Callback callback, RunLoop* runLoop)
    : queue_(queue), callback_(std::move(callback)), runLoop_(runLoop) {
    if (runLoop_)
        runLoop_->add(*this);
}

CallbackDelivery::~CallbackDelivery() {
    cancel();
}

void CallbackDelivery::deliver(AudioQueueBuffer& buffer) {
    if (!runLoop_)
        callback_(queue_, buffer);
    else if (posted_.push(&buffer)) // always, unless its user enqueues a buffer that is posted already
        runLoop_->wake();
}

/// Not what is posted meanwhile: that wakes the loop again, and other sources want to run too. Less when a
/// callback runs the loop itself, or stops its queue.
void CallbackDelivery::run() {
    for (std::uint32_t count = posted_.size(); count > 0 && posted_.size() > 0; --count) {
        AudioQueueBuffer& buffer = *posted_[0];
        posted_.pop();
        callback_(queue_, buffer);
    }
}

void CallbackDelivery::cancel() {
    if (!runLoop_)
        return;
    runLoop_->remove(*this);
    posted_.clear();
}

} // namespace sonotrace
