#pragma once

#include "platform/RunLoop.h"
#include "platform/SoundSystem.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <semaphore>
#include <thread>
#include <utility>

namespace sonotrace {

/// A run loop that the test turns.
class ManualRunLoop : public RunLoop {
public:
    void post(std::function<void()> task) override {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
    }

    std::size_t waiting() {
        const std::lock_guard lock(mutex_);
        return tasks_.size();
    }

    /// Runs what has been posted, tasks posted meanwhile included.
    void turn() {
        for (;;) {
            std::function<void()> task;
            {
                const std::lock_guard lock(mutex_);
                if (tasks_.empty())
                    return;
                task = std::move(tasks_.front());
                tasks_.pop_front();
            }
            task();
        }
    }

private:
    std::mutex mutex_;
    std::deque<std::function<void()>> tasks_;
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

/// Reads the meter and the state of an input on `uid` while its callback is held up: the window must not wait
/// for a callback's work. `turn` makes samples flow.
inline void expectReadingsDuringACallback(SoundSystem& system, const std::string& uid,
                                          const std::function<void()>& turn) {
    constexpr auto kPatience = std::chrono::seconds(10);
    std::binary_semaphore entered{0};
    std::binary_semaphore readings{0};
    std::atomic<int> calls{0};
    std::atomic<bool> readMeanwhile{false};
    const auto hold = [&](AudioQueue& self, AudioQueueBuffer& buffer) {
        if (calls.fetch_add(1) == 0) {
            entered.release();
            readMeanwhile = readings.try_acquire_for(kPatience);
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
    readings.release();
    clock.join();
    queue->stop();
    EXPECT_TRUE(readMeanwhile);
}

} // namespace sonotrace
