#include "generator/OutputStream.h"

#include "platform/SystemLog.h"

#include <algorithm>
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
        {.streamName = "Generators", .runLoop = nullptr}, queue_);
    printDiagnostic("AudioQueueNewOutput err %d\n", created);
    if (!queue_)
        return;
    chooseDevice(popupIndex);
    enqueueSilence();
    printDiagnostic("AudioQueueStart err %d\n", queue_->start());
}

void OutputStream::chooseDevice(int popupIndex) {
    const auto device = devices_.outputDevice(popupIndex);
    if (!device)
        return; // no such pop-up position: the queue plays on the server's default device
    const std::size_t k = *device;
    const Status status = queue_->setCurrentDevice(devices_.uid(k));
    if (status != kNoError)
        systemLog("AudioQueueSetProperty err %d ", status);
    systemLog("Device: %s id %d UID: %s\n", devices_.deviceNames[k].c_str(),
              static_cast<int>(devices_.deviceIds[k]),
              devices_.deviceUids[k] ? devices_.deviceUids[k]->c_str() : "(null)");
}

void OutputStream::enqueueSilence() {
    for (int i = 0; i < kBuffersPerQueue; ++i) {
        AudioQueueBuffer* buffer = nullptr;
        printDiagnostic("AudioQueueAllocateBuffer err %d\n",
                        queue_->allocateBuffer(format_.bufferBytes(), buffer));
        if (!buffer)
            continue;
        buffer->byteSize = format_.bufferBytes();
        systemLog("myStruct.frameCount %d", format_.frameCount);
        std::ranges::fill(buffer->allSamples(), std::int16_t{0});
        queue_->enqueueBuffer(*buffer);
    }
}

void OutputStream::fill(AudioQueue& queue, AudioQueueBuffer& buffer) {
    buffer.byteSize = format_.bufferBytes();
    render_(buffer.allSamples());
    queue.enqueueBuffer(buffer);
}

void OutputStream::stopSound() {
    systemLog("Stop Sound");
    systemLog("stopping AQ");
    if (!queue_)
        return;
    const Status status = queue_->stop();
    if (status == kNoError) {
        queue_->dispose();
        queue_.reset();
    } else {
        systemLog("AudioQueueStop err %d\n", status);
        unstopped_.push_back(std::move(queue_));
    }
}

QueueState OutputStream::state() const {
    return queue_ ? queue_->state() : QueueState();
}

} // namespace sonotrace
