#include "audio/StreamQueue.h"

#include "base/SystemLog.h"

#include <algorithm>

namespace sonotrace {

void StreamQueue::setCurrentDevice(const AudioDeviceTable& devices, std::optional<std::size_t> k) {
    chosen_ = ChosenDevice();
    if (!k)
        return;
    chosen_ = {devices.uid(*k), devices.deviceNames[*k]};
    const Status status = queue_->setCurrentDevice(chosen_.uid);
    if (status != kNoError)
        systemLog("AudioQueueSetProperty err %d ", status);
}

void StreamQueue::enqueueBuffers(const StreamDescription& format, bool printsEnqueue) {
    for (int i = 0; i < kBuffersPerQueue; ++i) {
        AudioQueueBuffer* buffer = nullptr;
        printDiagnostic("AudioQueueAllocateBuffer err %d\n",
                        queue_->allocateBuffer(format.bufferBytes(), buffer));
        if (!buffer)
            continue;
        buffer->byteSize = format.bufferBytes();
        systemLog("myStruct.frameCount %d", format.frameCount);
        std::ranges::fill(buffer->allSamples(), std::int16_t{0});
        const Status status = queue_->enqueueBuffer(*buffer);
        if (printsEnqueue)
            printDiagnostic("AudioQueueEnqueueBuffer err %d\n", status);
    }
}

void StreamQueue::stopSound() {
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
    }
}

} // namespace sonotrace
