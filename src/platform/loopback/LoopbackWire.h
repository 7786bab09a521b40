#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>

namespace sonotrace {

class LoopbackQueue;

/// The wire from the loopback's outputs to its inputs: mixes what the started output queues play and hands it
/// to the started input queues.
class LoopbackWire {
public:
    /// Lets `frames` frames pass. The clock's thread.
    void pass(std::uint32_t frames);

    /// False when as many queues are connected as there can be. Window thread.
    bool connect(LoopbackQueue& queue);

    /// Waits for this queue's callback, and for nobody else's. Window thread.
    void disconnect(const LoopbackQueue& queue);

    /// Input volume of the left (0) and right (1) channel, 0 to 1. Any thread.
    float volume(std::size_t channel) const { return volumes_[channel].load(std::memory_order_relaxed); }
    void setVolume(std::size_t channel, float volume) {
        volumes_[channel].store(volume, std::memory_order_relaxed);
    }

private:
    /// Room for a queue. The mutex is held while the clock serves that queue; the window thread alone sets
    /// the pointer, with the mutex, and so may read it without.
    struct Slot {
        std::mutex mutex;
        LoopbackQueue* queue = nullptr;
    };

    void passBlock(std::span<std::int16_t> interleaved);
    template <typename Action>
    void serve(bool inputs, Action action);
    Slot* slotOf(const LoopbackQueue* queue);

    std::array<Slot, 16> slots_;
    std::array<std::atomic<float>, 2> volumes_{1.0F, 1.0F};
};

} // namespace sonotrace
