#pragma once

#include "audio/StreamQueue.h"

#include <cstdint>
#include <functional>
#include <span>

namespace sonotrace {

/// The program's one output stream: a queue of three buffers that a render routine fills. Runs from launch to
/// quit and is restarted when another device is chosen. Window thread.
class OutputStream {
public:
    /// Fills one buffer of interleaved samples. Audio thread; the contract of AudioQueue::Callback holds.
    using Render = std::function<void(std::span<std::int16_t> interleaved)>;

    OutputStream(SoundSystem& system, const AudioDeviceTable& devices, Render render);

    /// Opens the device at position `popupIndex` of the output pop-up, or the server's default where there is
    /// no such position, and starts playing.
    void startSound(int popupIndex);
    void stopSound() { queue_.stopSound(); }

    QueueState state() const { return queue_.state(); }
    const ChosenDevice& chosen() const { return queue_.chosen(); }

private:
    void chooseDevice(int popupIndex);
    void fill(AudioQueue& queue, AudioQueueBuffer& buffer);

    SoundSystem& system_;
    const AudioDeviceTable& devices_;
    const Render render_;
    StreamDescription format_;
    StreamQueue queue_;
};

} // namespace sonotrace
