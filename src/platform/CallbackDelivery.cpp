#include "platform/CallbackDelivery.h"

#include <utility>

namespace sonotrace {

/// What a posted task holds on to, so that it finds out that its queue is gone.
struct CallbackDelivery::Target {
    AudioQueue* queue;
    AudioQueue::Callback callback;
    std::atomic<bool> cancelled{false};
};

CallbackDelivery::CallbackDelivery(AudioQueue& queue, AudioQueue::Callback callback, RunLoop* runLoop)
    : target_(std::make_shared<Target>()), runLoop_(runLoop) {
    target_->queue = &queue;
    target_->callback = std::move(callback);
}

CallbackDelivery::~CallbackDelivery() {
    cancel();
}

void CallbackDelivery::deliver(AudioQueueBuffer& buffer) {
    if (!runLoop_) {
        target_->callback(*target_->queue, buffer);
        return;
    }
    runLoop_->post([target = target_, &buffer] {
        if (!target->cancelled.load(std::memory_order_acquire))
            target->callback(*target->queue, buffer);
    });
}

void CallbackDelivery::cancel() {
    target_->cancelled.store(true, std::memory_order_release);
}

} // namespace sonotrace
