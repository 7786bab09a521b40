#include "platform/pulse/PulseSoundSystem.h"

#include "platform/pulse/PulseInputQueue.h"
#include "platform/pulse/PulseOutputQueue.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

std::string PulseSoundSystem::name() const {
    return devices_.serverName().find("PipeWire") != std::string::npos ? "PipeWire" : "PulseAudio";
}

Status PulseSoundSystem::deviceListSize(std::uint32_t& count) {
    if (!devices_.waitForFirstList())
        return kStatusTimeout;
    count = static_cast<std::uint32_t>(devices_.devices().size());
    return kNoError;
}

Status PulseSoundSystem::deviceList(std::vector<DeviceDescription>& devices) {
    if (!devices_.waitForFirstList())
        return kStatusTimeout;
    devices.clear();
    for (const PulseDevice& device : devices_.devices()) {
        DeviceDescription& description = devices.emplace_back();
        description.id = device.id;
        description.name = device.description;
        description.uid = device.name;
        description.outputStreams.emplace();
        description.inputStreams.emplace();
        (device.isSource ? description.inputStreams : description.outputStreams)->push_back(device.channels);
    }
    return kNoError;
}

bool PulseSoundSystem::hasInputVolume(AudioDeviceID device, std::uint32_t channel) {
    float volume = 0;
    return getInputVolume(device, channel, volume) == kNoError;
}

Status PulseSoundSystem::getInputVolume(AudioDeviceID device, std::uint32_t channel, float& volume) {
    for (const PulseDevice& known : devices_.devices()) {
        if (known.id != device || !known.isSource || channel < 1 || channel > known.volume.channels)
            continue;
        volume = static_cast<float>(known.volume.values[channel - 1]) / static_cast<float>(PA_VOLUME_NORM);
        return kNoError;
    }
    return kStatusNoSuchDevice;
}

Status PulseSoundSystem::setInputVolume(AudioDeviceID device, std::uint32_t channel, float volume) {
    if (channel < 1)
        return kStatusNoSuchDevice;
    if (!(volume >= 0.0F)) // NaN included
        return kStatusBadArgument;
    const float scaled = std::min(volume, 1.0F) * static_cast<float>(PA_VOLUME_NORM);
    return devices_.setVolume(device, channel - 1, static_cast<pa_volume_t>(std::lround(scaled)));
}

Status PulseSoundSystem::restoreInputVolumes() {
    return devices_.restoreVolumes();
}

Status PulseSoundSystem::setPlayThrough(AudioDeviceID, std::uint32_t, std::uint32_t) {
    return kStatusUnavailable;
}

Status PulseSoundSystem::newOutput(const StreamDescription& format, AudioQueue::Callback callback,
                                   const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) {
    queue = std::make_unique<PulseOutputQueue>(devices_, format, std::move(callback), options);
    return kNoError;
}

Status PulseSoundSystem::newInput(const StreamDescription& format, AudioQueue::Callback callback,
                                  const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) {
    queue = std::make_unique<PulseInputQueue>(devices_, format, std::move(callback), options);
    return kNoError;
}

} // namespace sonotrace
