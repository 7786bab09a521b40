#include "platform/loopback/LoopbackSystem.h"

#include "support/Streams.h"

#include <gtest/gtest.h>

#include <limits>
#include <list>

namespace sonotrace {
namespace {

class LoopbackTest : public testing::Test {
protected:
    LoopbackSystem system_{LoopbackSystem::Clock::Manual};
    ManualRunLoop runLoop_;
    Streams streams_{system_};
};

TEST_F(LoopbackTest, TheInputHearsTheOutputSampleBySampleAtItsVolume) {
    streams_.play();
    streams_.listen();
    for (const std::uint32_t frames : {1U, 5000U, 4999U, 44100U, 17U, 78183U})
        system_.advance(frames);
    const auto& heard = streams_.heard;
    EXPECT_EQ(heard.size(), std::size_t{2} * 12 * 11025);
    EXPECT_TRUE(streams_.heardEveryNote());
    const std::uint32_t silence = 2 * 3 * 5000; // in the buffers that are enqueued at first
    EXPECT_EQ(streams_.beginning(), silence);
    EXPECT_EQ(streams_.output->state().underruns, 0U);
    LevelMeter levels[2];
    streams_.input->currentLevelMeter(levels);

    EXPECT_EQ(system_.setInputVolume(1, 2, 0.5F), kNoError);
    system_.advance(11025);
    const auto last = static_cast<std::uint32_t>(heard.size() - 1);
    EXPECT_EQ(heard[last - 1], noise(last - 1 - silence));
    EXPECT_EQ(heard[last], noise(last - silence) / 2);
    streams_.input->currentLevelMeter(levels);
    EXPECT_NEAR(levels[0].averagePower, 0.5F, 0.01F);
    EXPECT_NEAR(levels[1].peakPower, 0.5F, 0.001F);
    EXPECT_NE(system_.setInputVolume(1, 3, 0.5F), kNoError);
    EXPECT_NE(system_.setInputVolume(2, 1, 0.5F), kNoError);
    EXPECT_NE(system_.setInputVolume(1, 1, std::numeric_limits<float>::quiet_NaN()), kNoError);
}

TEST_F(LoopbackTest, AStalledWindowThreadLosesNothingForHalfASecondAndAStopDropsWhatIsPosted) {
    streams_.play();
    streams_.listen({}, &runLoop_);
    for (int i = 0; i < 4; ++i) {
        system_.advance(22050);
        runLoop_.turn();
    }
    EXPECT_EQ(streams_.input->state().underruns, 0U);
    EXPECT_TRUE(streams_.heardEveryNote());
    const std::size_t heard = streams_.heard.size();
    system_.advance(10 * 44100);
    EXPECT_EQ(runLoop_.waiting(), 3);
    EXPECT_GT(streams_.input->state().underruns, 0U);
    EXPECT_EQ(streams_.input->stop(), kNoError);
    runLoop_.turn();
    EXPECT_EQ(streams_.heard.size(), heard);
}

TEST_F(LoopbackTest, APostedCallbackMayCloseOtherStreams) {
    std::unique_ptr<AudioQueue> queues[4];
    int calls[4] = {};
    for (std::size_t i = 0; i < 4; ++i) {
        const auto callback = [&queues, &calls, i](AudioQueue&, AudioQueueBuffer&) {
            ++calls[i];
            for (const std::size_t other : {0U, 3U})
                if (i == 1)
                    queues[other].reset();
        };
        queues[i] = startQueue(system_, &SoundSystem::newInput, 100, callback, {}, &runLoop_);
    }
    system_.advance(100);
    runLoop_.turn();
    EXPECT_EQ(testing::PrintToString(calls), "{ 1, 1, 1, 0 }");
}

TEST_F(LoopbackTest, HasRoomForSixteenStreamsAndForTheirOwnBuffers) {
    std::list<Streams> all;
    for (int i = 0; i < 17; ++i)
        all.emplace_back(system_).listen();
    AudioQueue& last = *all.back().input;
    EXPECT_EQ(last.start(), kStatusUnavailable);
    all.pop_front();
    EXPECT_EQ(last.start(), kNoError);
    AudioQueueBuffer another(4);
    another.byteSize = 4;
    EXPECT_EQ(last.enqueueBuffer(another), kStatusBadArgument);
}

TEST_F(LoopbackTest, DoesNotWaitForTheCallbackOfAnotherStream) {
    expectNobodyWaitsForACallback(system_, "loopback", [this] { system_.advance(2205); });
}

TEST(LoopbackClock, PassesTimeByItselfUntilTheStop) {
    LoopbackSystem system;
    ManualRunLoop runLoop;
    Streams direct(system);
    Streams posted(system);
    direct.listen({}, nullptr, 441);
    posted.listen({}, &runLoop, 441);
    while (posted.heard.size() < 8820)
        runLoop.turn();
    direct.input->stop();
    EXPECT_GT(direct.heard.size(), 4410U)
        << "read without a lock, for the thread sanitizer to watch the stop";
}

} // namespace
} // namespace sonotrace
