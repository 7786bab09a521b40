#include "platform/pulse/PulseInputQueue.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace sonotrace {

namespace {
constexpr std::uint32_t kMeteredFragment = 2205; // frames, 50 ms: as often as level meters are read
constexpr std::uint32_t kFragment = 5512;        // half a buffer
} // namespace

Status PulseInputQueue::enableLevelMetering(bool enabled) {
    level_.enable(enabled);
    return kNoError;
}

Status PulseInputQueue::currentLevelMeter(std::span<LevelMeter> channels) {
    level_.read(channels);
    // A stream that has come to a standstill hears nothing, whatever it has measured last.
    if (phase() != QueueState::Phase::Running)
        std::ranges::fill(channels, LevelMeter());
    return kNoError;
}

int PulseInputQueue::connectStream(pa_stream& stream, const char* device) {
    fragmentPosition_ = 0;
    fragmentSeen_ = false;
    waiting_ = 0;
    pa_stream_set_read_callback(&stream, &PulseQueue::onTransfer, static_cast<PulseQueue*>(this));
    pa_buffer_attr attributes;
    attributes.maxlength = static_cast<std::uint32_t>(format_.sampleRate) * format_.bytesPerFrame;
    attributes.tlength = static_cast<std::uint32_t>(-1);
    attributes.prebuf = static_cast<std::uint32_t>(-1);
    attributes.minreq = static_cast<std::uint32_t>(-1);
    attributes.fragsize = (level_.isEnabled() ? kMeteredFragment : kFragment) * format_.bytesPerFrame;
    constexpr int kFlags = PA_STREAM_ADJUST_LATENCY | PA_STREAM_START_UNMUTED;
    return pa_stream_connect_record(&stream, device, &attributes, static_cast<pa_stream_flags_t>(kFlags));
}

/// What is captured is what the device hears: a volume that a mixer remembers of earlier streams is undone.
void PulseInputQueue::streamReady(pa_context& context, pa_stream& stream) {
    pa_cvolume volume;
    pa_cvolume_set(&volume, format_.channelsPerFrame, PA_VOLUME_NORM);
    forget(pa_context_set_source_output_volume(&context, pa_stream_get_index(&stream), &volume, nullptr,
                                               nullptr));
}

void PulseInputQueue::transfer(pa_stream& stream) {
    for (;;) {
        const void* data = nullptr;
        std::size_t bytes = 0;
        if (pa_stream_peek(&stream, &data, &bytes) < 0 || bytes == 0)
            return;
        const auto* const samples = static_cast<const std::int16_t*>(data); // null for a hole
        if (!std::exchange(fragmentSeen_, true)) {
            if (!samples)
                countUnderrun();
            else
                level_.add({samples, bytes / sizeof(std::int16_t)});
        }
        const std::size_t stored = store(samples, bytes);
        fragmentPosition_ += stored;
        if (stored > 0)
            waiting_ = 0;
        if (fragmentPosition_ < bytes) {
            watchForLoss(stream);
            return; // no buffer to fill: goes on when one is enqueued
        }
        fragmentPosition_ = 0;
        fragmentSeen_ = false;
        pa_stream_drop(&stream);
    }
}

/// The library says nothing when it has to drop a fragment; but then one came and nothing was added.
void PulseInputQueue::watchForLoss(pa_stream& stream) {
    const std::size_t waiting = pa_stream_readable_size(&stream);
    const bool lost = waiting == waiting_;
    if (lost && !losing_)
        countUnderrun();
    losing_ = lost;
    waiting_ = waiting;
}

/// Fills enqueued buffers from where the fragment was left and delivers the full ones. The bytes stored.
std::size_t PulseInputQueue::store(const std::int16_t* samples, std::size_t bytes) {
    std::size_t stored = 0;
    while (fragmentPosition_ + stored < bytes && queued_.size() > 0) {
        AudioQueueBuffer& buffer = queued_[0];
        const std::size_t from = fragmentPosition_ + stored;
        const std::size_t count = std::min<std::size_t>(bytes - from, buffer.byteCapacity - bufferPosition_);
        auto* const to = reinterpret_cast<std::byte*>(buffer.samples.get()) + bufferPosition_;
        if (samples)
            std::memcpy(to, reinterpret_cast<const std::byte*>(samples) + from, count);
        else
            std::memset(to, 0, count);
        stored += count;
        bufferPosition_ += count;
        if (bufferPosition_ == buffer.byteCapacity) {
            bufferPosition_ = 0;
            buffer.byteSize = buffer.byteCapacity;
            queued_.pop();
            delivery_.deliver(buffer);
        }
    }
    return stored;
}

} // namespace sonotrace
