#include "platform/pulse/PulseQueue.h"

#include "platform/pulse/PulseDevices.h"

#include <utility>

namespace sonotrace {

PulseQueue::PulseQueue(PulseDevices& devices, const StreamDescription& format, Callback callback,
                       const QueueOptions& options)
    : devices_(devices),
      format_(format),
      delivery_(*this, std::move(callback), options.runLoop),
      streamName_(options.streamName),
      connection_({.connected =
                       [this](pa_context&) {
                           fellBack_ = false;
                           openStream(device_.empty() ? nullptr : device_.c_str());
                       },
                   .disconnected =
                       [this] {
                           closeStream();
                           state_.phase = QueueState::Phase::Waiting;
                       }}) {}

PulseQueue::~PulseQueue() {
    stop();
}

Status PulseQueue::setCurrentDevice(const std::string& uid) {
    const PulseLock lock(loop());
    device_ = uid;
    return kNoError;
}

Status PulseQueue::allocateBuffer(std::uint32_t byteCapacity, AudioQueueBuffer*& buffer) {
    buffers_.push_back(std::make_unique<AudioQueueBuffer>(byteCapacity));
    buffer = buffers_.back().get();
    return kNoError;
}

Status PulseQueue::enqueueBuffer(AudioQueueBuffer& buffer) {
    const PulseLock lock(loop());
    if (buffer.byteSize < format_.bytesPerFrame || buffer.byteSize > buffer.byteCapacity)
        return kStatusBadArgument;
    queued_.push_back(&buffer);
    // On the loop's own thread transfer() is running and goes on with the buffer by itself.
    if (stream_ && pa_stream_get_state(stream_.get()) == PA_STREAM_READY &&
        !pa_threaded_mainloop_in_thread(loop()))
        transfer(*stream_);
    return kNoError;
}

Status PulseQueue::start() {
    {
        const PulseLock lock(loop());
        state_.phase = QueueState::Phase::Waiting;
    }
    connection_.start();
    return kNoError;
}

Status PulseQueue::stop() {
    {
        const PulseLock lock(loop());
        delivery_.cancel();
        closeStream();
        state_.phase = QueueState::Phase::Stopped;
    }
    connection_.stop();
    return kNoError;
}

Status PulseQueue::dispose() {
    return stop();
}

QueueState PulseQueue::state() const {
    QueueState state;
    {
        const PulseLock lock(loop());
        state = state_;
        state.underruns = underruns_;
    }
    state.deviceName = devices_.description(state.deviceName);
    return state;
}

void PulseQueue::openStream(const char* device) {
    closeStream();
    const pa_sample_spec format{PA_SAMPLE_S16LE, static_cast<std::uint32_t>(format_.sampleRate),
                                static_cast<std::uint8_t>(format_.channelsPerFrame)};
    const PulseProplist properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ROLE, "test");
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ICON_NAME, "sonotrace");
    stream_.reset(pa_stream_new_with_proplist(connection_.context(), streamName_.c_str(), &format, nullptr,
                                              properties.get()));
    if (!stream_) {
        state_.phase = QueueState::Phase::DeviceLost;
        return;
    }
    pa_stream_set_state_callback(
        stream_.get(), [](pa_stream*, void* self) { static_cast<PulseQueue*>(self)->onStreamState(); }, this);
    pa_stream_set_moved_callback(
        stream_.get(), [](pa_stream*, void* self) { static_cast<PulseQueue*>(self)->onMoved(); }, this);
    if (connectStream(*stream_, device) < 0)
        state_.phase = QueueState::Phase::DeviceLost;
}

void PulseQueue::closeStream() {
    if (!stream_)
        return;
    pa_stream_set_state_callback(stream_.get(), nullptr, nullptr);
    pa_stream_set_moved_callback(stream_.get(), nullptr, nullptr);
    pa_stream_set_write_callback(stream_.get(), nullptr, nullptr);
    pa_stream_set_read_callback(stream_.get(), nullptr, nullptr);
    pa_stream_set_underflow_callback(stream_.get(), nullptr, nullptr);
    pa_stream_disconnect(stream_.get());
    stream_.reset();
}

void PulseQueue::onStreamState() {
    switch (pa_stream_get_state(stream_.get())) {
    case PA_STREAM_READY:
        state_.phase = QueueState::Phase::Running;
        onMoved();
        streamReady(*stream_);
        break;
    case PA_STREAM_FAILED:
    case PA_STREAM_TERMINATED: {
        if (!connection_.context())
            break; // the server went away: the connection comes back and opens a new stream
        // A device that was not there when the stream was opened is replaced by the default once.
        const bool neverRan = state_.phase == QueueState::Phase::Waiting;
        state_.phase = QueueState::Phase::DeviceLost;
        if (neverRan && !device_.empty() && !fellBack_) {
            fellBack_ = true;
            state_.phase = QueueState::Phase::Waiting;
            openStream(nullptr);
        }
        break;
    }
    default:
        break;
    }
}

void PulseQueue::onMoved() {
    const char* const name = pa_stream_get_device_name(stream_.get());
    state_.deviceName = name ? name : "";
    state_.moved = !device_.empty() && state_.deviceName != device_;
}

void PulseQueue::onTransfer(pa_stream* stream, std::size_t, void* self) {
    static_cast<PulseQueue*>(self)->transfer(*stream);
}

} // namespace sonotrace
