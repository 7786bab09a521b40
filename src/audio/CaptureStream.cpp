#include "audio/CaptureStream.h"

#include "base/SystemLog.h"

#include <utility>

namespace sonotrace {

CaptureStream::CaptureStream(SoundSystem& system, const AudioDeviceTable& devices,
                             const CaptureVariant& variant, Capture capture)
    : system_(system), devices_(devices), variant_(variant), capture_(std::move(capture)) {}

void CaptureStream::startSound(int popupIndex) {
    const Status created = system_.newInput(
        format_, [this](AudioQueue& queue, AudioQueueBuffer& buffer) { receive(queue, buffer); },
        {.streamName = variant_.streamName, .runLoop = variant_.runLoop}, queue_.slot());
    printDiagnostic("AudioQueueNewInput err %d\n", created);
    if (!queue_.get())
        return;
    queue_.setCurrentDevice(devices_, devices_.inputDevice(popupIndex));
    queue_.enqueueBuffers(format_, variant_.printsEnqueue);
    if (variant_.metersLevel)
        printDiagnostic("AudioQueueSetProperty err %d\n", queue_.get()->enableLevelMetering(true));
    const Status started = queue_.get()->start();
    if (variant_.startDiagnostic)
        printDiagnostic("%s err %d\n", variant_.startDiagnostic, started);
}

void CaptureStream::receive(AudioQueue& queue, AudioQueueBuffer& buffer) {
    buffer.byteSize = format_.bufferBytes();
    capture_(buffer.allSamples());
    queue.enqueueBuffer(buffer);
}

float CaptureStream::peakLevel() {
    LevelMeter channels[2];
    if (!queue_.get() || queue_.get()->currentLevelMeter(channels) != kNoError)
        return 0.0F;
    return channels[0].peakPower;
}

} // namespace sonotrace
