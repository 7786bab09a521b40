#pragma once

#include "platform/AudioQueue.h"
#include "platform/RunLoop.h"
#include "platform/Status.h"
#include "platform/StreamDescription.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sonotrace {

/// Number of a device, unique over inputs and outputs; valid while the program runs. 0 is no device.
using AudioDeviceID = std::uint32_t;

/// Channel counts of a device's streams in one direction, first stream first; nothing when the device could
/// not say.
using StreamConfiguration = std::optional<std::vector<std::uint32_t>>;

/// The facts about one sound device.
struct DeviceDescription {
    AudioDeviceID id = 0;
    std::string name;               ///< for people, UTF-8
    std::optional<std::string> uid; ///< persistent; nothing when the device has none
    StreamConfiguration outputStreams;
    StreamConfiguration inputStreams;
};

/// How a queue presents itself and where its callback runs.
struct QueueOptions {
    std::string streamName;     ///< what a mixer shows for the stream, for example the window's title
    RunLoop* runLoop = nullptr; ///< null: the callback runs on the queue's own thread; outlives the queue
};

/// The operating system's audio services. Window thread only; no call waits for long: a sound server that
/// does not answer makes a call fail with a status.
class SoundSystem {
public:
    virtual ~SoundSystem() = default;

    /// What plays, for people: "PulseAudio", "PipeWire", "Loopback".
    virtual std::string name() const = 0;

    /// Number of devices that deviceList() gives.
    virtual Status deviceListSize(std::uint32_t& count) = 0;

    /// All devices: the default input first, then the other inputs, monitors of outputs, the default output,
    /// the other outputs. Listing opens no device.
    virtual Status deviceList(std::vector<DeviceDescription>& devices) = 0;

    /// The input volume of a device's channel, counted from 1: 0.0 is silence, 1.0 is 100 % in every mixer.
    virtual bool hasInputVolume(AudioDeviceID device, std::uint32_t channel) = 0;
    virtual Status getInputVolume(AudioDeviceID device, std::uint32_t channel, float& volume) = 0;
    virtual Status setInputVolume(AudioDeviceID device, std::uint32_t channel, float volume) = 0;

    /// The power of an input volume that samples are multiplied by. Mixers take the cube, nearer to the ear.
    virtual double inputVolumeExponent() const { return 3.0; }

    /// Gives every device whose input volume was set the one that it had before that. Waits a fifth of a
    /// second at most for the answer, so that the program may end then.
    virtual Status restoreInputVolumes() = 0;

    /// Sends a device's input straight to its output (channel 0 is the whole device).
    virtual Status setPlayThrough(AudioDeviceID device, std::uint32_t channel, std::uint32_t enabled) = 0;

    /// Creates a stream; it does nothing until it is started. The sound system outlives its queues.
    virtual Status newOutput(const StreamDescription& format, AudioQueue::Callback callback,
                             const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) = 0;
    virtual Status newInput(const StreamDescription& format, AudioQueue::Callback callback,
                            const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) = 0;
};

} // namespace sonotrace
