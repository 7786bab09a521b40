#pragma once

#include "platform/RunLoop.h"
#include "platform/SoundSystem.h"
#include "support/PrivateServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <semaphore>
#include <thread>
#include <vector>

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
    std::counting_semaphore<> entered{0};
    std::promise<void> done;
    std::atomic<bool> late = false;
    const auto hold = [&, isDone = done.get_future().share()](AudioQueue&, AudioQueueBuffer&) {
        entered.release();
        late = late || isDone.wait_for(std::chrono::seconds(10)) != std::future_status::ready;
    };
    const auto queue = startQueue(system, &SoundSystem::newInput, 2205, hold, uid);
    std::thread clock(turn);
    entered.acquire();
    LevelMeter levels[2];
    queue->currentLevelMeter(levels);
    EXPECT_EQ(queue->state().phase, QueueState::Phase::Running);
    startQueue(
        system, &SoundSystem::newInput, 2205, [](AudioQueue&, AudioQueueBuffer&) {}, uid)
        ->stop();
    done.set_value();
    clock.join();
    queue->stop();
    EXPECT_FALSE(late);
}

/// Noise of full scale, different on both channels, from the number of the sample alone.
inline std::int16_t noise(std::uint32_t n) {
    return static_cast<std::int16_t>((n * 0x9E3779B1U) >> 13U);
}

/// Plays noise into one device and listens to another.
struct Streams {
    explicit Streams(SoundSystem& soundSystem) : system(soundSystem) {}

    void play(const std::string& uid = {}) {
        const auto fill = [this](AudioQueue& queue, AudioQueueBuffer& buffer) {
            for (std::int16_t& sample : buffer.allSamples())
                sample = noise(played++);
            ++filled;
            queue.enqueueBuffer(buffer);
        };
        output = startQueue(system, &SoundSystem::newOutput, kOutputFramesPerBuffer, fill, uid);
    }

    void listen(const std::string& uid = {}, RunLoop* runLoop = nullptr,
                std::int32_t frames = kCaptureFramesPerBuffer) {
        const auto hear = [this](AudioQueue& queue, AudioQueueBuffer& buffer) {
            const std::lock_guard lock(mutex);
            for (const std::int16_t sample : buffer.allSamples())
                heard.push_back(sample);
            queue.enqueueBuffer(buffer);
        };
        input = startQueue(system, &SoundSystem::newInput, frames, hear, uid, runLoop);
    }

    /// Listens to the line, plays into it once that runs, and waits until that runs too.
    bool loop(RunLoop* runLoop = nullptr, std::int32_t frames = kCaptureFramesPerBuffer) {
        listen("line.monitor", runLoop, frames);
        const bool listens = waitFor([this] { return running(input); });
        play("line");
        return listens && waitFor([this] { return running(output); });
    }

    std::size_t heardSamples() {
        const std::lock_guard lock(mutex);
        return heard.size();
    }

    /// Where in what was heard the noise begins; the end when it does not. With the mutex held.
    std::size_t beginning() const {
        const std::int16_t start[] = {noise(0), noise(1), noise(2), noise(3)};
        return static_cast<std::size_t>(
            std::search(heard.begin(), heard.end(), std::begin(start), std::end(start)) - heard.begin());
    }

    /// Whether everything heard after the first noise is the noise from its beginning, without a gap.
    bool heardEveryNote() {
        const std::lock_guard lock(mutex);
        std::uint32_t count = 0;
        for (std::size_t i = beginning(); i < heard.size(); ++i)
            if (heard[i] != noise(count++))
                return false;
        return count >= 100000;
    }

    bool running(const std::unique_ptr<AudioQueue>& queue) const {
        return queue->state().phase == QueueState::Phase::Running;
    }

    SoundSystem& system;
    std::atomic<std::uint32_t> played = 0;
    std::atomic<int> filled = 0;
    std::mutex mutex;
    std::vector<std::int16_t> heard;
    std::unique_ptr<AudioQueue> output;
    std::unique_ptr<AudioQueue> input;
};

} // namespace sonotrace
