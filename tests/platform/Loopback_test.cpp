#include "platform/loopback/LoopbackSystem.h"

#include "support/Queues.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <thread>

namespace sonotrace {
namespace {

/// Sample number n of the test signal: both channels differ, and no stretch repeats within a test.
std::int16_t signal(std::size_t n) {
    return static_cast<std::int16_t>((n * 7919U) & 0xFFFFU);
}

class LoopbackTest : public testing::Test {
protected:
    std::unique_ptr<AudioQueue> player() {
        return startQueue(system_, &SoundSystem::newOutput, kOutputFramesPerBuffer,
                          [this](AudioQueue& self, AudioQueueBuffer& buffer) {
                              for (std::int16_t& sample : buffer.allSamples())
                                  sample = signal(played_++);
                              self.enqueueBuffer(buffer);
                          });
    }

    std::unique_ptr<AudioQueue> listener(RunLoop* runLoop) {
        const auto hear = [this](AudioQueue& self, AudioQueueBuffer& buffer) {
            heard_.insert(heard_.end(), buffer.samples.get(), buffer.samples.get() + buffer.byteSize / 2);
            self.enqueueBuffer(buffer);
        };
        return startQueue(system_, &SoundSystem::newInput, kCaptureFramesPerBuffer, hear, {}, runLoop);
    }

    /// The silence of the three first buffers, then the signal from its start, without a gap.
    void expectSignal() const {
        const std::size_t silence = std::size_t{3} * 5000 * 2;
        for (std::size_t i = 0; i < heard_.size(); ++i)
            ASSERT_EQ(heard_[i], i < silence ? 0 : signal(i - silence)) << "sample " << i;
    }

    LoopbackSystem system_{LoopbackSystem::Clock::Manual};
    ManualRunLoop runLoop_;
    std::size_t played_ = 0;
    std::vector<std::int16_t> heard_;
};

TEST_F(LoopbackTest, TheInputHearsTheOutputSampleBySample) {
    const auto output = player();
    const auto input = listener(nullptr);
    for (const std::uint32_t frames : {1U, 5000U, 4999U, 44100U, 17U, 88200U})
        system_.advance(frames);
    EXPECT_EQ(heard_.size(), std::size_t{2} * 11025 * 12);
    expectSignal();
    EXPECT_EQ(output->state().underruns, 0U);
}

TEST_F(LoopbackTest, AStalledWindowThreadLosesNothingForHalfASecondAndHoldsNoMoreThanTheBuffers) {
    const auto output = player();
    const auto input = listener(&runLoop_);
    system_.advance(20000);
    runLoop_.turn();
    system_.advance(22050);
    runLoop_.turn();
    EXPECT_EQ(input->state().underruns, 0U);
    expectSignal();
    system_.advance(10 * 44100);
    EXPECT_EQ(runLoop_.waiting(), 3U);
    EXPECT_GT(input->state().underruns, 0U);
}

TEST_F(LoopbackTest, AfterStopNoCallbackRunsPostedOnesIncluded) {
    const auto input = listener(&runLoop_);
    system_.advance(30000);
    ASSERT_EQ(runLoop_.waiting(), 2U);
    EXPECT_EQ(input->stop(), kNoError);
    system_.advance(30000);
    listener(&runLoop_);
    auto gone = listener(&runLoop_);
    system_.advance(30000);
    gone.reset(); // a posted callback may outlive its queue
    runLoop_.turn();
    EXPECT_TRUE(heard_.empty());
}

TEST_F(LoopbackTest, TheInputVolumeActsOnEachChannelAndTheMeterSeesIt) {
    const auto output = player();
    const auto input = listener(nullptr);
    EXPECT_EQ(system_.setInputVolume(1, 2, 0.5F), kNoError);
    system_.advance(60000);
    const std::size_t first = std::size_t{3} * 5000 * 2;
    for (std::size_t i = first; i < first + 2000; i += 2) {
        EXPECT_EQ(heard_[i], signal(i - first));
        EXPECT_EQ(heard_[i + 1], signal(i + 1 - first) / 2);
    }
    LevelMeter levels[2];
    input->currentLevelMeter(levels);
    EXPECT_NEAR(levels[0].peakPower, 1.0F, 0.001F);
    EXPECT_NEAR(levels[0].averagePower, 0.5F * 45000.0F / 60000.0F, 0.01F);
    EXPECT_NEAR(levels[1].peakPower, 0.5F, 0.001F);

    EXPECT_NE(system_.setInputVolume(1, 3, 0.5F), kNoError);
    EXPECT_NE(system_.setInputVolume(2, 1, 0.5F), kNoError);
    EXPECT_NE(system_.setInputVolume(1, 1, std::numeric_limits<float>::quiet_NaN()), kNoError);
    EXPECT_EQ(system_.setInputVolume(1, 1, 17.0F), kNoError);
    float volume = 0;
    EXPECT_EQ(system_.getInputVolume(1, 1, volume), kNoError);
    EXPECT_EQ(volume, 1.0F);
}

TEST(LoopbackClock, PassesTimeByItself) {
    LoopbackSystem system;
    std::atomic<int> buffers = 0;
    const auto count = [&buffers](AudioQueue& self, AudioQueueBuffer& buffer) {
        ++buffers;
        self.enqueueBuffer(buffer);
    };
    const auto queue = startQueue(system, &SoundSystem::newInput, 441, count);
    for (int i = 0; i < 1000 && buffers < 10; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10)); // bounded wait for another thread's clock
    EXPECT_GE(buffers, 10);
    queue->stop();
    const int stopped = buffers;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(buffers, stopped);
}

TEST_F(LoopbackTest, IsReadWhileACallbackRuns) {
    expectReadingsDuringACallback(system_, "loopback", [this] { system_.advance(2205); });
}

} // namespace
} // namespace sonotrace
