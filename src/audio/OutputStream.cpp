#include "audio/OutputStream.h"

#include "base/SystemLog.h"

#include <utility>

namespace sonotrace {

OutputStream::OutputStream(SoundSystem& system, const AudioDeviceTable& devices, Render render)
    : system_(system), devices_(devices), render_(std::move(render)) {}

void OutputStream::startSound(int popupIndex) {
    systemLog("Start Sound");
    format_ = StreamDescription();
    format_.frameCount = kOutputFramesPerBuffer;
    const Status created = system_.newOutput(
        format_, [this](AudioQueue& queue, AudioQueueBuffer& buffer) { fill(queue, buffer); },
        {.streamName = "Generators", .runLoop = nullptr}, queue_.slot());
    printDiagnostic("AudioQueueNewOutput err %d\n", created);
    if (!queue_.get())
        return;
    chooseDevice(popupIndex);
    queue_.enqueueBuffers(format_, false);
    printDiagnostic("AudioQueueStart err %d\n", queue_.get()->start());
}

void OutputStream::chooseDevice(int popupIndex) {
    const auto k = devices_.outputDevice(popupIndex);
    queue_.setCurrentDevice(devices_, k);
    if (!k)
        return;
    systemLog("Device: %s id %d UID: %s\n", devices_.deviceNames[*k].c_str(),
              static_cast<int>(devices_.deviceIds[*k]),
              devices_.deviceUids[*k] ? devices_.uid(*k).c_str() : "(null)");
}

void OutputStream::fill(AudioQueue& queue, AudioQueueBuffer& buffer) {
    buffer.byteSize = format_.bufferBytes();
    render_(buffer.allSamples());
    queue.enqueueBuffer(buffer);
}

} // namespace sonotrace
