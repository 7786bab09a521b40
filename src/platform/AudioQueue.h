#pragma once

#include "platform/Status.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace sonotrace {

/// One buffer of a queue: interleaved 16-bit samples. The queue owns it; between the callback that hands it
/// over and enqueueBuffer() it belongs to the queue's user.
struct AudioQueueBuffer {
    explicit AudioQueueBuffer(std::uint32_t bytes)
        : byteCapacity(bytes), samples(std::make_unique<std::int16_t[]>(bytes / sizeof(std::int16_t))) {}

    const std::uint32_t byteCapacity;
    std::uint32_t byteSize = 0; ///< bytes in use: to be played, or captured
    const std::unique_ptr<std::int16_t[]> samples;

    /// All samples the buffer has room for.
    std::span<std::int16_t> allSamples() { return {samples.get(), byteCapacity / sizeof(std::int16_t)}; }
};

/// Linear level of one channel, 0 to 1, since the meter was last read.
struct LevelMeter {
    float averagePower = 0;
    float peakPower = 0;
};

/// What a stream is doing, for the status line of its window.
struct QueueState {
    enum class Phase {
        Stopped,    ///< not started, or stopped
        Waiting,    ///< started, but the server is away or does not answer
        Running,    ///< samples flow
        DeviceLost, ///< the device is gone and the server has not moved the stream
        Failed,     ///< cannot be opened: the system has no descriptor or thread left
    };
    Phase phase = Phase::Stopped;
    std::string deviceName;     ///< name of the device the stream is really on; empty while unknown
    std::string deviceUid;      ///< the same device's persistent UID
    std::uint32_t openings = 0; ///< how many streams the queue has had: one more after every trouble
    bool moved = false;         ///< the server has put the stream on another device than the one asked for
    std::uint64_t underruns =
        0; ///< output: times the server ran out of samples; input: times samples were lost
};

/// A stream to or from one device. Start: setCurrentDevice, allocateBuffer and enqueueBuffer for each buffer,
/// start. Stop: stop, dispose. All methods are for the window thread unless they say otherwise, and none of
/// them waits for the sound server. Only stop() and dispose() wait for a callback that is running.
///
/// The callback gets each buffer that has been played (to be filled again) or captured (to be read), and
/// gives it back with enqueueBuffer(). It runs on the queue's own thread, where it must not allocate, lock,
/// wait, touch files or log, or on the run loop the queue was created with, where it must not keep that
/// thread from its other work for long. It must not stop its queue. Once stop() has returned it does not run
/// any more, callbacks already posted to a run loop included.
class AudioQueue {
public:
    using Callback = std::function<void(AudioQueue& queue, AudioQueueBuffer& buffer)>;

    virtual ~AudioQueue() = default; ///< stops and disposes

    /// Chooses the device by its persistent UID; an empty UID, or no call, means the server's default device.
    virtual Status setCurrentDevice(const std::string& uid) = 0;

    /// Makes a zeroed buffer of `byteCapacity` bytes that lives as long as the queue. Before start(); a queue
    /// has a handful of buffers at most.
    virtual Status allocateBuffer(std::uint32_t byteCapacity, AudioQueueBuffer*& buffer) = 0;

    /// Hands a buffer to the queue, to be played or filled in the order given; kStatusBadArgument when as
    /// many are enqueued as were allocated. Window thread before start(), and the callback.
    virtual Status enqueueBuffer(AudioQueueBuffer& buffer) = 0;

    virtual Status start() = 0;
    virtual Status stop() = 0;    ///< at once, dropping what is queued
    virtual Status dispose() = 0; ///< at once; the queue is of no further use

    virtual Status enableLevelMetering(bool enabled) = 0;

    /// Fills one entry a channel (left, right), silence while no samples flow, and starts a new measurement.
    virtual Status currentLevelMeter(std::span<LevelMeter> channels) = 0;

    virtual QueueState state() const = 0;
};

} // namespace sonotrace
