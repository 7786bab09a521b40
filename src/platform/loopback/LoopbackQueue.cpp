#include "platform/loopback/LoopbackQueue.h"

#include "base/Numbers.h"
#include "platform/loopback/LoopbackWire.h"

#include <algorithm>
#include <utility>

namespace sonotrace {

LoopbackQueue::LoopbackQueue(std::shared_ptr<LoopbackWire> wire, Direction direction, Callback callback,
                             RunLoop* runLoop)
    : wire_(std::move(wire)), direction_(direction), delivery_(*this, std::move(callback), runLoop) {}

LoopbackQueue::~LoopbackQueue() {
    dispose();
}

void LoopbackQueue::play(std::span<std::int16_t> interleaved) {
    while (!interleaved.empty()) {
        if (queued_.size() == 0) {
            underruns_.fetch_add(1, std::memory_order_relaxed);
            return;
        }
        AudioQueueBuffer& buffer = queued_[0];
        const std::size_t end = buffer.byteSize / sizeof(std::int16_t);
        const std::size_t count = std::min(interleaved.size(), end - position_);
        for (std::size_t i = 0; i < count; ++i)
            interleaved[i] = addSamples(interleaved[i], buffer.samples[position_ + i]);
        interleaved = interleaved.subspan(count);
        position_ += count;
        if (position_ == end) {
            queued_.pop();
            position_ = 0;
            delivery_.deliver(buffer);
        }
    }
}

void LoopbackQueue::capture(std::span<const std::int16_t> interleaved) {
    level_.add(interleaved);
    while (!interleaved.empty()) {
        if (queued_.size() == 0) {
            underruns_.fetch_add(
                1, std::memory_order_relaxed); // the user holds all buffers: these samples have nowhere to go
            return;
        }
        AudioQueueBuffer& buffer = queued_[0];
        const std::size_t end = buffer.allSamples().size();
        const std::size_t count = std::min(interleaved.size(), end - position_);
        std::copy_n(interleaved.begin(), count, buffer.samples.get() + position_);
        interleaved = interleaved.subspan(count);
        position_ += count;
        if (position_ == end) {
            buffer.byteSize = buffer.byteCapacity;
            queued_.pop();
            position_ = 0;
            delivery_.deliver(buffer);
        }
    }
}

Status LoopbackQueue::setCurrentDevice(const std::string& uid) {
    return uid.empty() || uid == kLoopbackDeviceUid ? kNoError : kStatusNoSuchDevice;
}

Status LoopbackQueue::allocateBuffer(std::uint32_t byteCapacity, AudioQueueBuffer*& buffer) {
    return queued_.allocate(byteCapacity, buffer);
}

Status LoopbackQueue::enqueueBuffer(AudioQueueBuffer& buffer) {
    return queued_.enqueue(buffer);
}

Status LoopbackQueue::start() {
    running_ = wire_->connect(*this);
    return running_ ? kNoError : kStatusUnavailable;
}

Status LoopbackQueue::stop() {
    wire_->disconnect(*this);
    delivery_.cancel();
    queued_.clear();
    position_ = 0;
    running_ = false;
    return kNoError;
}

Status LoopbackQueue::dispose() {
    return stop();
}

Status LoopbackQueue::enableLevelMetering(bool enabled) {
    level_.enable(enabled);
    return kNoError;
}

Status LoopbackQueue::currentLevelMeter(std::span<LevelMeter> channels) {
    level_.read(channels);
    return kNoError;
}

QueueState LoopbackQueue::state() const {
    QueueState state;
    state.phase = running_ ? QueueState::Phase::Running : QueueState::Phase::Stopped;
    state.deviceName = kLoopbackDeviceName;
    state.deviceUid = kLoopbackDeviceUid;
    state.underruns = underruns_.load(std::memory_order_relaxed);
    return state;
}

} // namespace sonotrace
