#pragma once

#include "platform/AudioQueue.h"
#include "platform/BufferQueue.h"
#include "platform/CallbackDelivery.h"
#include "platform/LevelAccumulator.h"
#include "platform/SoundSystem.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

namespace sonotrace {

class LoopbackWire;

/// An output or input queue on the loopback's wire.
class LoopbackQueue : public AudioQueue {
public:
    enum class Direction { Output, Input };

    LoopbackQueue(std::shared_ptr<LoopbackWire> wire, Direction direction, Callback callback,
                  RunLoop* runLoop);
    ~LoopbackQueue() override;

    bool isInput() const { return direction_ == Direction::Input; }

    /// Adds the next samples of an output queue to `interleaved`. The clock's thread.
    void play(std::span<std::int16_t> interleaved);

    /// Takes the samples that arrive at an input queue. The clock's thread.
    void capture(std::span<const std::int16_t> interleaved);

    Status setCurrentDevice(const std::string& uid) override;
    Status allocateBuffer(std::uint32_t byteCapacity, AudioQueueBuffer*& buffer) override;
    Status enqueueBuffer(AudioQueueBuffer& buffer) override;
    Status start() override;
    Status stop() override;
    Status dispose() override;
    Status enableLevelMetering(bool enabled) override;
    Status currentLevelMeter(std::span<LevelMeter> channels) override;
    QueueState state() const override;

private:
    const std::shared_ptr<LoopbackWire> wire_;
    const Direction direction_;
    CallbackDelivery delivery_;
    BufferQueue queued_;
    std::size_t position_ = 0; ///< samples of the first queued buffer that have been played or captured
    bool running_ = false;     ///< window thread
    LevelAccumulator level_;
    std::atomic<std::uint64_t> underruns_{0};
};

inline constexpr const char* kLoopbackDeviceName = "Built-in Loopback";
inline constexpr const char* kLoopbackDeviceUid = "loopback";

} // namespace sonotrace
