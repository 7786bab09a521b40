#include "platform/pulse/PulseOutputQueue.h"

#include <algorithm>

namespace sonotrace {

int PulseOutputQueue::connectStream(pa_stream& stream, const char* device) {
    written_ = 0;
    pa_stream_set_write_callback(&stream, &PulseQueue::onTransfer, static_cast<PulseQueue*>(this));
    pa_stream_set_underflow_callback(
        &stream, [](pa_stream*, void* self) { static_cast<PulseOutputQueue*>(self)->countUnderrun(); }, this);
    const std::uint32_t bufferBytes = format_.bufferBytes();
    pa_buffer_attr attributes;
    attributes.maxlength = 2 * kBuffersPerQueue * bufferBytes;
    attributes.tlength = kBuffersPerQueue * bufferBytes;
    attributes.prebuf = bufferBytes;
    attributes.minreq = bufferBytes;
    attributes.fragsize = static_cast<std::uint32_t>(-1);
    // Full volume relative to the device's own: what is rendered is what arrives, whatever a mixer remembers
    // of earlier streams.
    pa_cvolume volume;
    pa_cvolume_set(&volume, format_.channelsPerFrame, PA_VOLUME_NORM);
    constexpr int kFlags = PA_STREAM_ADJUST_LATENCY | PA_STREAM_START_UNMUTED | PA_STREAM_RELATIVE_VOLUME;
    return pa_stream_connect_playback(&stream, device, &attributes, static_cast<pa_stream_flags_t>(kFlags),
                                      &volume, nullptr);
}

void PulseOutputQueue::streamReady(pa_context&, pa_stream& stream) {
    writeQueued(stream);
}

void PulseOutputQueue::writeQueued(pa_stream& stream) {
    for (; written_ < queued_.size(); ++written_) {
        const AudioQueueBuffer& buffer = queued_[written_];
        if (pa_stream_write(&stream, buffer.samples.get(), buffer.byteSize, nullptr, 0, PA_SEEK_RELATIVE) < 0)
            return;
    }
}

void PulseOutputQueue::transfer(pa_stream& stream) {
    writeQueued(stream);
    while (written_ > 0 && room(stream) >= queued_[0].byteSize) {
        AudioQueueBuffer& played = queued_[0];
        queued_.pop();
        --written_;
        delivery_.deliver(played);
        writeQueued(stream);
    }
}

/// How much of what was written is neither in the stream nor in the device any more, bytes. The server takes
/// the latency of the device off the length it was asked to keep in the stream, and would let the stream run
/// down by a whole buffer before it has asked for one.
std::size_t PulseOutputQueue::room(pa_stream& stream) const {
    const std::size_t writable = pa_stream_writable_size(&stream);
    const pa_buffer_attr* const granted = pa_stream_get_buffer_attr(&stream);
    if (writable == static_cast<std::size_t>(-1) || !granted)
        return 0;
    const std::uint32_t bufferBytes = format_.bufferBytes();
    const std::uint32_t inDevice =
        kBuffersPerQueue * bufferBytes - std::min(granted->tlength, kBuffersPerQueue * bufferBytes);
    // Less than a buffer: the library reports 0 also when more is written than the server has asked for, and
    // a whole buffer of room would then be refilled for ever.
    return writable + std::min(inDevice, bufferBytes - format_.bytesPerFrame);
}

} // namespace sonotrace
