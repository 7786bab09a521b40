#pragma once

#include "platform/SoundSystem.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <semaphore>
#include <thread>

namespace sonotrace {

/// Reads the meter and the state of an input on `uid` while its callback is held up: the window must not wait
/// for a callback's work. `turn` makes samples flow.
inline void expectReadingsDuringACallback(SoundSystem& system, const std::string& uid,
                                          const std::function<void()>& turn) {
    constexpr auto kPatience = std::chrono::seconds(10);
    std::binary_semaphore entered{0};
    std::binary_semaphore readings{0};
    std::atomic<int> calls{0};
    std::atomic<bool> readMeanwhile{false};
    std::unique_ptr<AudioQueue> queue;
    StreamDescription format;
    format.frameCount = 2205;
    system.newInput(
        format,
        [&](AudioQueue& self, AudioQueueBuffer& buffer) {
            if (calls.fetch_add(1) == 0) {
                entered.release();
                readMeanwhile = readings.try_acquire_for(kPatience);
            }
            self.enqueueBuffer(buffer);
        },
        {}, queue);
    queue->setCurrentDevice(uid);
    queue->enableLevelMetering(true);
    AudioQueueBuffer* buffer = nullptr;
    queue->allocateBuffer(format.bufferBytes(), buffer);
    buffer->byteSize = format.bufferBytes();
    queue->enqueueBuffer(*buffer);
    queue->start();
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
