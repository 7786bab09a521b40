#pragma once

#include "base/Ring.h"
#include "platform/AudioQueue.h"
#include "platform/StreamDescription.h"

#include <memory>
#include <vector>

namespace sonotrace {

/// As many buffers as a queue can have.
inline constexpr std::uint32_t kMostBuffers = 16;

/// Buffers on their way from one thread to another.
using BufferRing = Ring<AudioQueueBuffer*, kMostBuffers>;

/// The buffers of a queue, and those of them that are enqueued.
class BufferQueue {
public:
    /// AudioQueue::allocateBuffer.
    Status allocate(std::uint32_t byteCapacity, AudioQueueBuffer*& buffer) {
        if (!isWholeFrames(byteCapacity))
            return kStatusBadArgument;
        if (buffers_.size() == kMostBuffers)
            return kStatusUnavailable;
        buffer = buffers_.emplace_back(std::make_unique<AudioQueueBuffer>(byteCapacity)).get();
        return kNoError;
    }

    /// AudioQueue::enqueueBuffer. The thread that has the buffer.
    Status enqueue(AudioQueueBuffer& buffer) {
        const bool fits = isWholeFrames(buffer.byteSize) && buffer.byteSize <= buffer.byteCapacity;
        return fits && size() < buffers_.size() && enqueued_.push(&buffer) ? kNoError : kStatusBadArgument;
    }

    /// How many are enqueued, and each of them, the oldest first. The thread that plays or captures, as for
    /// the rest.
    std::uint32_t size() const { return enqueued_.size(); }
    AudioQueueBuffer& operator[](std::uint32_t i) const { return *enqueued_[i]; }
    void pop() { enqueued_.pop(); }
    void clear() { enqueued_.clear(); }

private:
    static bool isWholeFrames(std::uint32_t bytes) {
        return bytes > 0 && bytes % StreamDescription().bytesPerFrame == 0;
    }

    std::vector<std::unique_ptr<AudioQueueBuffer>> buffers_;
    BufferRing enqueued_;
};

} // namespace sonotrace
