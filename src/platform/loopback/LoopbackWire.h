#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace sonotrace {

class LoopbackQueue;

/// The wire from the loopback's outputs to its inputs: mixes what the started output queues play and hands it
/// to the started input queues.
///
/// One mutex, taken once a passage of a few milliseconds, keeps a queue's stop() and its callback apart. It
/// is recursive because callbacks enqueue their buffer from inside the passage.
class LoopbackWire {
public:
    /// Lets `frames` frames pass. The clock's thread.
    void pass(std::uint32_t frames);

    void connect(LoopbackQueue& queue);
    void disconnect(LoopbackQueue& queue);

    /// Input volume of the left (0) and right (1) channel, 0 to 1.
    float volume(std::size_t channel);
    void setVolume(std::size_t channel, float volume);

    std::recursive_mutex& mutex() { return mutex_; }

private:
    void passBlock(std::span<std::int16_t> interleaved);

    std::recursive_mutex mutex_;
    std::vector<LoopbackQueue*> queues_;
    std::array<float, 2> volumes_{1.0F, 1.0F};
};

} // namespace sonotrace
