#pragma once

#include "audio/AudioDeviceTable.h"
#include "platform/SoundSystem.h"

#include <memory>
#include <optional>
#include <string>

namespace sonotrace {

/// A device as the user has chosen it; empty for the server's default. It may be gone meanwhile.
struct ChosenDevice {
    std::string uid;
    std::string name;
};

/// The queue behind a stream of the program, output or input: the steps of starting and stopping that do not
/// depend on the direction. Failures are printed and the steps go on. Window thread.
class StreamQueue {
public:
    /// The queue; null before the first start and after a stop.
    AudioQueue* get() const { return queue_.get(); }

    /// Where a sound system puts a new queue.
    std::unique_ptr<AudioQueue>& slot() { return queue_; }

    /// Puts the queue on device `k` of `devices`; without one it stays on the server's default device.
    void setCurrentDevice(const AudioDeviceTable& devices, std::optional<std::size_t> k);

    /// Allocates the queue's buffers and enqueues them full of silence.
    void enqueueBuffers(const StreamDescription& format, bool printsEnqueue);

    void stopSound();

    /// The device it was put on last.
    const ChosenDevice& chosen() const { return chosen_; }

    QueueState state() const { return queue_ ? queue_->state() : QueueState(); }

private:
    ChosenDevice chosen_;
    std::unique_ptr<AudioQueue> queue_;
};

} // namespace sonotrace
