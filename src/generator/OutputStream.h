#pragma once

#include "audio/AudioDeviceTable.h"
#include "platform/SoundSystem.h"

#include <cstdint>
#include <functional>
#include <memory>
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
    /// no such position, and starts playing. Failures are printed and the steps go on.
    void startSound(int popupIndex);
    void stopSound();

    QueueState state() const;

private:
    void chooseDevice(int popupIndex);
    void enqueueSilence();
    void fill(AudioQueue& queue, AudioQueueBuffer& buffer);

    SoundSystem& system_;
    const AudioDeviceTable& devices_;
    const Render render_;
    StreamDescription format_;
    std::unique_ptr<AudioQueue> queue_;
    std::vector<std::unique_ptr<AudioQueue>> unstopped_; ///< queues whose stop failed are left as they are
};

} // namespace sonotrace
