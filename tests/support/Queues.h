#pragma once

#include "platform/RunLoop.h"
#include "platform/SoundSystem.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <semaphore>
#include <thread>
#include <utility>

namespace sonotrace {

/// A run loop that the test turns. Its counter orders nothing, so that the thread sanitizer sees whether what
/// is posted does.
class ManualRunLoop : public RunLoop {
public:
    void wake() override { wakes_.fetch_add(1, std::memory_order_relaxed); }

    int waiting() const { return wakes_.load(std::memory_order_relaxed); }

    /// Runs what has been posted, also meanwhile.
    void turn() {
        do {
            wakes_.store(0, std::memory_order_relaxed);
            runSources();
        } while (waiting() > 0);
    }

private:
    std::atomic<int> wakes_{0};
};

/// Makes a stream on the device `uid`, as SoundSystem::newInput or newOutput do, with buffers of `frames`
/// frames; meters its level, gives it its buffers and starts it.
inline std::unique_ptr<AudioQueue> startQueue(SoundSystem& system, decltype(&SoundSystem::newInput) make,
                                              std::int32_t frames, AudioQueue::Callback callback,
                                              const std::string& uid = {}, RunLoop* runLoop = nullptr) {
    StreamDescription format;
    format.frameCount = frames;
    std::unique_ptr<AudioQueue> queue;
    (system.*make)(format, std::move(callback), {.streamName = "test", .runLoop = runLoop}, queue);
    queue->setCurrentDevice(uid);
    queue->enableLevelMetering(true);
    for (int i = 0; i < kBuffersPerQueue; ++i) {
        AudioQueueBuffer* buffer = nullptr;
        queue->allocateBuffer(format.bufferBytes(), buffer);
        buffer->byteSize = format.bufferBytes();
        queue->enqueueBuffer(*buffer);
    }
    queue->start();
    return queue;
}

/// Reads the meter and the state of an input on `uid`, and opens and closes another, while the first one's
/// callback is held up: the window must not wait for a callback's work. `turn` makes samples flow.
inline void expectNobodyWaitsForACallback(SoundSystem& system, const std::string& uid,
                                          const std::function<void()>& turn) {
    constexpr auto kPatience = std::chrono::seconds(10);
    std::binary_semaphore entered{0};
    std::binary_semaphore done{0};
    std::atomic<int> calls{0};
    std::atomic<bool> doneMeanwhile{false};
    const auto hold = [&](AudioQueue& self, AudioQueueBuffer& buffer) {
        if (calls.fetch_add(1) == 0) {
            entered.release();
            doneMeanwhile = done.try_acquire_for(kPatience);
        }
        self.enqueueBuffer(buffer);
    };
    const auto queue = startQueue(system, &SoundSystem::newInput, 2205, hold, uid);
    std::thread clock(turn);
    EXPECT_TRUE(entered.try_acquire_for(kPatience));
    LevelMeter levels[2];
    queue->currentLevelMeter(levels);
    EXPECT_EQ(queue->state().phase, QueueState::Phase::Running);
    float volume = 0;
    system.getInputVolume(1, 1, volume);
    startQueue(system, &SoundSystem::newInput, 2205, hold, uid)->stop();
    done.release();
    clock.join();
    queue->stop();
    EXPECT_TRUE(doneMeanwhile);
}

} // namespace sonotrace
