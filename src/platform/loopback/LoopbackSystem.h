#pragma once

#include "platform/SoundSystem.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace sonotrace {

class LoopbackWire;

/// A sound system that needs no hardware and no server: one device, "Built-in Loopback", whose two inputs
/// hear its two outputs.
class LoopbackSystem : public SoundSystem {
public:
    enum class Clock {
        Steady, ///< time passes by itself, on a thread of the system's own
        Manual, ///< time passes when advance() is called; callbacks run inside it
    };

    explicit LoopbackSystem(Clock clock = Clock::Steady);
    ~LoopbackSystem() override;

    /// Manual clock: lets `frames` frames pass, on the calling thread.
    void advance(std::uint32_t frames);

    std::string name() const override;
    Status deviceListSize(std::uint32_t& count) override;
    Status deviceList(std::vector<DeviceDescription>& devices) override;
    bool hasInputVolume(AudioDeviceID device, std::uint32_t channel) override;
    Status getInputVolume(AudioDeviceID device, std::uint32_t channel, float& volume) override;
    Status setInputVolume(AudioDeviceID device, std::uint32_t channel, float volume) override;
    double inputVolumeExponent() const override { return 1.0; }
    Status restoreInputVolumes() override;
    Status setPlayThrough(AudioDeviceID device, std::uint32_t channel, std::uint32_t enabled) override;
    Status newOutput(const StreamDescription& format, AudioQueue::Callback callback,
                     const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) override;
    Status newInput(const StreamDescription& format, AudioQueue::Callback callback,
                    const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) override;

private:
    void runSteadyClock();

    const std::shared_ptr<LoopbackWire> wire_;
    std::mutex clockMutex_;
    std::condition_variable clockStop_;
    bool stopping_ = false;
    std::thread clock_;
};

} // namespace sonotrace
