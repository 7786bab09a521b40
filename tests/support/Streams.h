#pragma once

#include "support/PrivateServer.h"
#include "support/Queues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

namespace sonotrace {

/// Noise of full scale, different on both channels, from the number of the sample alone.
inline std::int16_t noise(std::uint32_t n) {
    n = (n ^ 61U) ^ (n >> 16U);
    n *= 9U;
    n ^= n >> 4U;
    n *= 0x27d4eb2dU;
    return static_cast<std::int16_t>(n >> 13U);
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
            {
                const std::lock_guard lock(mutex);
                const auto samples = buffer.allSamples();
                heard.insert(heard.end(), samples.begin(), samples.end());
            }
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
        return static_cast<std::size_t>(std::ranges::search(heard, start).begin() - heard.begin());
    }

    /// Samples that were rendered and have not been heard yet.
    std::size_t inFlight() {
        const std::lock_guard lock(mutex);
        return played - (heard.size() - beginning());
    }

    /// Whether everything heard after the first noise is the noise from its beginning, without a gap.
    testing::AssertionResult heardEveryNote() {
        const std::lock_guard lock(mutex);
        const std::size_t first = beginning();
        if (first + 100000 > heard.size())
            return testing::AssertionFailure() << "the beginning is not among " << heard.size() << " samples";
        for (std::size_t i = first; i < heard.size(); ++i) {
            if (heard[i] != noise(static_cast<std::uint32_t>(i - first)))
                return testing::AssertionFailure()
                       << "differs " << i - first << " samples after the beginning";
        }
        return testing::AssertionSuccess();
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
