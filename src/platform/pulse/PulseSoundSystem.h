#pragma once

#include "platform/SoundSystem.h"
#include "platform/pulse/PulseDevices.h"

#include <chrono>

namespace sonotrace {

/// The user's sound server: PulseAudio, or PipeWire through its server for the same protocol.
class PulseSoundSystem : public SoundSystem {
public:
    /// Waits for the server to answer, at most `patience`. Without an answer the system works all the same,
    /// once the server is there.
    bool connected(std::chrono::milliseconds patience) { return devices_.waitUntilKnown(patience); }

    std::string name() const override;
    Status deviceListSize(std::uint32_t& count) override;
    Status deviceList(std::vector<DeviceDescription>& devices) override;
    bool hasInputVolume(AudioDeviceID device, std::uint32_t channel) override;
    Status getInputVolume(AudioDeviceID device, std::uint32_t channel, float& volume) override;
    Status setInputVolume(AudioDeviceID device, std::uint32_t channel, float volume) override;
    Status restoreInputVolumes() override;
    Status setPlayThrough(AudioDeviceID device, std::uint32_t channel, std::uint32_t enabled) override;
    Status newOutput(const StreamDescription& format, AudioQueue::Callback callback,
                     const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) override;
    Status newInput(const StreamDescription& format, AudioQueue::Callback callback,
                    const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) override;

private:
    mutable PulseDevices devices_;
};

} // namespace sonotrace
