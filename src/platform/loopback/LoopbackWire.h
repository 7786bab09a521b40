#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace sonotrace {

class LoopbackQueue;

/// The wire from the loopback's outputs to its inputs: mixes what the started output queues play and hands it
/// to the started input queues.
///
/// One mutex, taken once a passage of a few milliseconds, keeps a queue's stop() and its callback apart.
class LoopbackWire {
public:
    /// Lets `frames` frames pass. The clock's thread.
    void pass(std::uint32_t frames);

    void connect(LoopbackQueue& queue);
    void disconnect(LoopbackQueue& queue);

    /// Input volume of the left (0) and right (1) channel, 0 to 1. Any thread.
    float volume(std::size_t channel) const { return volumes_[channel].load(std::memory_order_relaxed); }
    void setVolume(std::size_t channel, float volume) {
        volumes_[channel].store(volume, std::memory_order_relaxed);
    }

private:
    void passBlock(std::span<std::int16_t> interleaved);

    std::mutex mutex_;
    std::vector<LoopbackQueue*> queues_;
    std::array<std::atomic<float>, 2> volumes_{1.0F, 1.0F};
};

} // namespace sonotrace
