#pragma once

#include "platform/LevelAccumulator.h"
#include "platform/pulse/PulseQueue.h"

namespace sonotrace {

/// Captures. Data for which no buffer is enqueued waits in the client library, for about a second; what comes
/// later is lost. What the server had to drop comes as a hole, which is filled with silence so that time
/// stays true. Both are counted.
class PulseInputQueue : public PulseQueue {
public:
    PulseInputQueue(PulseDevices& devices, const StreamDescription& format, Callback callback,
                    const QueueOptions& options)
        : PulseQueue(devices, format, std::move(callback), options) {}
    ~PulseInputQueue() override { stop(); }

    Status enableLevelMetering(bool enabled) override;
    Status currentLevelMeter(std::span<LevelMeter> channels) override;

protected:
    int connectStream(pa_stream& stream, const char* device) override;
    void streamReady(pa_context& context, pa_stream& stream) override;
    void transfer(pa_stream& stream) override;

private:
    std::size_t store(const std::int16_t* samples, std::size_t bytes);
    void watchForLoss(pa_stream& stream);

    std::size_t fragmentPosition_ = 0; ///< bytes of the stream's next fragment that are stored already
    bool fragmentSeen_ = false;        ///< it is measured, and counted if it is a hole
    std::size_t bufferPosition_ = 0;   ///< bytes of the first queued buffer that are filled
    std::size_t waiting_ = 0;          ///< bytes kept by the library since there is no buffer to fill
    bool losing_ = false;              ///< it has no room for more
    LevelAccumulator level_;
};

} // namespace sonotrace
