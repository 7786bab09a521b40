#pragma once

#include "platform/AudioQueue.h"
#include "platform/BufferQueue.h"
#include "platform/CallbackDelivery.h"
#include "platform/SoundSystem.h"
#include "platform/pulse/PulseConnection.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

namespace sonotrace {

class PulseDevices;

/// What output and input queues on the sound server have in common: the stream's life, the buffers, the
/// state. Each queue has a connection of its own, whose lock guards what its thread works with.
class PulseQueue : public AudioQueue {
public:
    ~PulseQueue() override;

    Status setCurrentDevice(const std::string& uid) override;
    Status allocateBuffer(std::uint32_t byteCapacity, AudioQueueBuffer*& buffer) override;
    Status enqueueBuffer(AudioQueueBuffer& buffer) override;
    Status start() override;
    Status stop() override;
    Status dispose() override;
    QueueState state() const override;

protected:
    QueueState::Phase phase() const;

    PulseQueue(PulseDevices& devices, const StreamDescription& format, Callback callback,
               const QueueOptions& options);

    /// Connects a new stream to `device`, null for the server's default. Negative on failure.
    virtual int connectStream(pa_stream& stream, const char* device) = 0;
    /// A new stream has begun to run.
    virtual void streamReady(pa_context& context, pa_stream& stream) = 0;
    /// The stream can be written or read, or the user has enqueued a buffer.
    virtual void transfer(pa_stream& stream) = 0;

    pa_threaded_mainloop* loop() const { return connection_.loop(); }
    static void onTransfer(pa_stream*, std::size_t, void* self);

    PulseDevices& devices_;
    const StreamDescription format_;
    CallbackDelivery delivery_;
    BufferQueue queued_;
    void countUnderrun() { underruns_.fetch_add(1, std::memory_order_relaxed); }

private:
    enum class Target { AskedFor, Default };

    void setPhase(QueueState::Phase phase);
    void openStream(Target target);
    void tryAgainLater();
    void closeStream();
    void onStreamState();
    void onStreamEnd();
    void onMoved();
    void lookForDevice();

    const std::string streamName_;
    std::string device_;   ///< the server's name of the device asked for; empty for its default
    bool started_ = false; ///< window thread
    bool everRan_ = false; ///< a stream has run since the server was reached
    bool standIn_ = false; ///< the stream was opened on the default device though another was asked for
    bool gone_ = false;    ///< the device asked for has been missing since the stream is on another
    std::atomic<pa_usec_t> flowed_{0}; ///< when samples were last moved
    std::atomic<std::uint64_t> underruns_{0};
    // Not the connection's lock: that is held while a callback runs, which may take its time.
    mutable std::mutex stateMutex_;
    QueueState state_; ///< under stateMutex_; changes only when the stream begins, ends or moves
    PulseConnection connection_;
    PulseTimer reopen_;
    PulseTimer look_;
    PulseStream stream_;
};

} // namespace sonotrace
