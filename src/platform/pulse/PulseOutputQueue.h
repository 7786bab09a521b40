#pragma once

#include "platform/pulse/PulseQueue.h"

namespace sonotrace {

/// Plays. The queue's buffers are what is queued in the server and in the device: each is taken for played,
/// and given back to be filled again, when there is room for it among them. So a new buffer is heard after
/// those of the queue that are still to be played and no more, with as much in store as there can be.
class PulseOutputQueue : public PulseQueue {
public:
    PulseOutputQueue(PulseDevices& devices, const StreamDescription& format, Callback callback,
                     const QueueOptions& options)
        : PulseQueue(devices, format, std::move(callback), options) {}
    ~PulseOutputQueue() override { stop(); }

    Status enableLevelMetering(bool) override { return kStatusUnavailable; }
    Status currentLevelMeter(std::span<LevelMeter>) override { return kStatusUnavailable; }

protected:
    int connectStream(pa_stream& stream, const char* device) override;
    void streamReady(pa_context& context, pa_stream& stream) override;
    void transfer(pa_stream& stream) override;

private:
    void writeQueued(pa_stream& stream);
    std::size_t room(pa_stream& stream) const;

    std::uint32_t written_ = 0; ///< how many of the queued buffers the present stream has
};

} // namespace sonotrace
