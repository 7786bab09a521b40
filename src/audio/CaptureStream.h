#pragma once

#include "audio/StreamQueue.h"

#include <cstdint>
#include <functional>
#include <span>

namespace sonotrace {

/// What differs between the capture streams of the three input tools.
struct CaptureVariant {
    const char* streamName;      ///< what a mixer shows
    RunLoop* runLoop;            ///< where buffers are delivered; null: on the queue's own thread
    bool printsEnqueue;          ///< prints the status of each enqueued buffer
    bool metersLevel;            ///< measures the level of what arrives
    bool folds;                  ///< adds left and right
    const char* startDiagnostic; ///< text printed with the start's status; null for none
};

/// An input tool's stream: delivers a quarter of a second of interleaved stereo at a time. Window thread.
class CaptureStream {
public:
    /// Takes 11025 frames. Runs where the variant says.
    using Capture = std::function<void(std::span<const std::int16_t> interleaved)>;

    CaptureStream(SoundSystem& system, const AudioDeviceTable& devices, const CaptureVariant& variant,
                  Capture capture);

    /// Opens the device at position `popupIndex` of the input pop-up, or the server's default where there is
    /// no such position, and starts listening.
    void startSound(int popupIndex);
    void stopSound() { queue_.stopSound(); }

    /// Peak of the first channel since the last reading, 0 to 1.
    float peakLevel();

    QueueState state() const { return queue_.state(); }
    const ChosenDevice& chosen() const { return queue_.chosen(); }

private:
    void receive(AudioQueue& queue, AudioQueueBuffer& buffer);

    SoundSystem& system_;
    const AudioDeviceTable& devices_;
    const CaptureVariant variant_;
    const Capture capture_;
    const StreamDescription format_{.frameCount = kCaptureFramesPerBuffer};
    StreamQueue queue_;
};

} // namespace sonotrace
