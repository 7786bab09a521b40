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
        passBlock({block.data(), std::size_t{2} * count});
        frames -= count;
    }
}

void LoopbackWire::passBlock(std::span<std::int16_t> interleaved) {
    std::fill(interleaved.begin(), interleaved.end(), std::int16_t{0});
    serve(false, [interleaved](LoopbackQueue& output) { output.play(interleaved); });
    for (std::size_t s = 0; s < interleaved.size(); ++s) {
        // Exact at full volume, so that a loopback measurement has no error of its own.
        interleaved[s] = static_cast<std::int16_t>(static_cast<float>(interleaved[s]) * volume(s % 2));
    }
    serve(true, [interleaved](LoopbackQueue& input) { input.capture(interleaved); });
}

template <typename Action>
void LoopbackWire::serve(bool inputs, Action action) {
    for (Slot& slot : slots_) {
        const std::lock_guard lock(slot.mutex);
        if (slot.queue && slot.queue->isInput() == inputs)
            action(*slot.queue);
    }
}

LoopbackWire::Slot* LoopbackWire::slotOf(const LoopbackQueue* queue) {
    const auto slot = std::ranges::find(slots_, queue, &Slot::queue);
    return slot == slots_.end() ? nullptr : &*slot;
}

bool LoopbackWire::connect(LoopbackQueue& queue) {
    if (slotOf(&queue))
        return true;
    Slot* const slot = slotOf(nullptr);
    if (!slot)
        return false;
    const std::lock_guard lock(slot->mutex);
    slot->queue = &queue;
    return true;
}

void LoopbackWire::disconnect(const LoopbackQueue& queue) {
    Slot* const slot = slotOf(&queue);
    if (!slot)
        return;
    const std::lock_guard lock(slot->mutex);
    slot->queue = nullptr;
}

} // namespace sonotrace
