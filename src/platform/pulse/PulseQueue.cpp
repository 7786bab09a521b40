#include "platform/pulse/PulseQueue.h"

#include "platform/pulse/PulseDevices.h"

#include <utility>

namespace sonotrace {

namespace {
constexpr pa_usec_t kReopenInterval = PA_USEC_PER_SEC;
constexpr pa_usec_t kFlowPatience = 2 * PA_USEC_PER_SEC; // devices that have to wake up take their time
} // namespace

PulseQueue::PulseQueue(PulseDevices& devices, const StreamDescription& format, Callback callback,
                       const QueueOptions& options)
    : devices_(devices),
      format_(format),
      delivery_(*this, std::move(callback), options.runLoop),
      streamName_(options.streamName),
      connection_({.connected =
                       [this](pa_context&) {
                           everRan_ = false;
                           openStream(Target::AskedFor);
                       },
                   .disconnected =
                       [this] {
                           reopen_.cancel();
                           look_.cancel();
                           closeStream();
                           setPhase(QueueState::Phase::Waiting);
                       }},
                  PulseConnection::FirstAttempt::OnlyConnects),
      reopen_(connection_.loop(), [this] { openStream(Target::AskedFor); }),
      look_(connection_.loop(), [this] { lookForDevice(); }) {}

PulseQueue::~PulseQueue() {
    stop();
}

Status PulseQueue::setCurrentDevice(const std::string& uid) {
    if (started_)
        return kStatusBadState;
    device_ = uid;
    return kNoError;
}

Status PulseQueue::allocateBuffer(std::uint32_t byteCapacity, AudioQueueBuffer*& buffer) {
    return queued_.allocate(byteCapacity, buffer);
}

Status PulseQueue::enqueueBuffer(AudioQueueBuffer& buffer) {
    const PulseLock lock(loop());
    const Status enqueued = queued_.enqueue(buffer);
    // On the loop's own thread transfer() is running and goes on with the buffer by itself.
    if (enqueued == kNoError && stream_ && pa_stream_get_state(stream_.get()) == PA_STREAM_READY &&
        !pa_threaded_mainloop_in_thread(loop()))
        transfer(*stream_);
    return enqueued;
}

Status PulseQueue::start() {
    if (started_)
        return kStatusBadState;
    started_ = true;
    setPhase(QueueState::Phase::Waiting);
    if (connection_.start())
        return kNoError;
    setPhase(QueueState::Phase::Failed);
    return kStatusUnavailable;
}

Status PulseQueue::stop() {
    connection_.stop();
    delivery_.cancel();
    setPhase(QueueState::Phase::Stopped);
    return kNoError;
}

Status PulseQueue::dispose() {
    return stop();
}

QueueState PulseQueue::state() const {
    QueueState state;
    {
        const std::lock_guard lock(stateMutex_);
        state = state_;
    }
    state.underruns = underruns_.load(std::memory_order_relaxed);
    state.phase = phase();
    state.deviceUid = state.deviceName;
    state.deviceName = devices_.description(state.deviceUid);
    return state;
}

QueueState::Phase PulseQueue::phase() const {
    const std::lock_guard lock(stateMutex_);
    const pa_usec_t flowed = flowed_.load(std::memory_order_relaxed);
    if (state_.phase == QueueState::Phase::Running && pa_rtclock_now() > flowed + kFlowPatience)
        return QueueState::Phase::Waiting; // connected all the same: the server hangs
    return state_.phase;
}

void PulseQueue::setPhase(QueueState::Phase phase) {
    const std::lock_guard lock(stateMutex_);
    state_.phase = phase;
}

void PulseQueue::openStream(Target target) {
    look_.cancel();
    closeStream();
    standIn_ = target == Target::Default && !device_.empty();
    gone_ = standIn_;
    const pa_sample_spec format{PA_SAMPLE_S16LE, static_cast<std::uint32_t>(format_.sampleRate),
                                static_cast<std::uint8_t>(format_.channelsPerFrame)};
    const PulseProplist properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ROLE, "test");
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ICON_NAME, "sonotrace");
    stream_.reset(pa_stream_new_with_proplist(connection_.context(), streamName_.c_str(), &format, nullptr,
                                              properties.get()));
    if (!stream_) {
        tryAgainLater();
        return;
    }
    pa_stream_set_state_callback(
        stream_.get(), [](pa_stream*, void* self) { static_cast<PulseQueue*>(self)->onStreamState(); }, this);
    pa_stream_set_moved_callback(
        stream_.get(), [](pa_stream*, void* self) { static_cast<PulseQueue*>(self)->onMoved(); }, this);
    const char* const device = device_.empty() || standIn_ ? nullptr : device_.c_str();
    if (connectStream(*stream_, device) < 0)
        tryAgainLater();
}

/// The device may be plugged in again.
void PulseQueue::tryAgainLater() {
    setPhase(QueueState::Phase::DeviceLost);
    reopen_.start(kReopenInterval);
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
        flowed_.store(pa_rtclock_now(), std::memory_order_relaxed);
        setPhase(QueueState::Phase::Running);
        everRan_ = true;
        {
            const std::lock_guard lock(stateMutex_);
            ++state_.openings;
        }
        onMoved();
        streamReady(*connection_.context(), *stream_);
        break;
    case PA_STREAM_FAILED:
    case PA_STREAM_TERMINATED:
        onStreamEnd();
        break;
    default:
        break;
    }
}

void PulseQueue::onStreamEnd() {
    pa_context* const context = connection_.context();
    if (!context)
        return; // the server went away: the connection comes back and opens a new stream
    if (pa_context_errno(context) == PA_ERR_TIMEOUT) {
        connection_.reconnect(); // the server hangs: that says nothing about the device
    } else if (!everRan_ && !standIn_ && !device_.empty()) {
        openStream(Target::Default); // the device was not there when the server was reached
    } else {
        tryAgainLater();
    }
}

void PulseQueue::onMoved() {
    const char* const name = pa_stream_get_device_name(stream_.get());
    const std::lock_guard lock(stateMutex_);
    state_.deviceName = name ? name : "";
    state_.moved = !device_.empty() && state_.deviceName != device_;
    if (state_.moved)
        look_.start(kReopenInterval);
}

/// Goes back to the device asked for once it was gone and is there again. While it has never been gone it was
/// the user who moved the stream, with a mixer.
void PulseQueue::lookForDevice() {
    {
        const std::lock_guard lock(stateMutex_);
        if (!state_.moved)
            return;
    }
    const bool there = devices_.has(device_);
    if (there && gone_) {
        openStream(Target::AskedFor);
    } else {
        gone_ = gone_ || !there;
        look_.start(kReopenInterval);
    }
}

void PulseQueue::onTransfer(pa_stream* stream, std::size_t, void* self) {
    auto& queue = *static_cast<PulseQueue*>(self);
    queue.flowed_.store(pa_rtclock_now(), std::memory_order_relaxed);
    queue.transfer(*stream);
}

} // namespace sonotrace
