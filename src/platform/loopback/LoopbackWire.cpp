#include "platform/loopback/LoopbackWire.h"

#include "platform/loopback/LoopbackQueue.h"

#include <algorithm>

namespace sonotrace {

namespace {
constexpr std::uint32_t kBlockFrames = 441; // 10 ms
}

void LoopbackWire::pass(std::uint32_t frames) {
    std::array<std::int16_t, std::size_t{2} * kBlockFrames> block;
    while (frames > 0) {
        const std::uint32_t count = std::min(frames, kBlockFrames);
        const std::lock_guard lock(mutex_);
        passBlock({block.data(), std::size_t{2} * count});
        frames -= count;
    }
}

void LoopbackWire::passBlock(std::span<std::int16_t> interleaved) {
    std::fill(interleaved.begin(), interleaved.end(), std::int16_t{0});
    // By index: a callback may connect or disconnect another queue on a run loop of this thread.
    for (std::size_t i = 0; i < queues_.size(); ++i) {
        if (!queues_[i]->isInput())
            queues_[i]->play(interleaved);
    }
    for (std::size_t s = 0; s < interleaved.size(); ++s) {
        // Exact at full volume, so that a loopback measurement has no error of its own.
        interleaved[s] = static_cast<std::int16_t>(static_cast<float>(interleaved[s]) * volume(s % 2));
    }
    for (std::size_t i = 0; i < queues_.size(); ++i) {
        if (queues_[i]->isInput())
            queues_[i]->capture(interleaved);
    }
}

void LoopbackWire::connect(LoopbackQueue& queue) {
    const std::lock_guard lock(mutex_);
    if (std::find(queues_.begin(), queues_.end(), &queue) == queues_.end())
        queues_.push_back(&queue);
}

void LoopbackWire::disconnect(LoopbackQueue& queue) {
    const std::lock_guard lock(mutex_);
    std::erase(queues_, &queue);
}

} // namespace sonotrace
