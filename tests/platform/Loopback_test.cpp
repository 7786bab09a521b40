#include "platform/loopback/LoopbackSystem.h"

#include "support/Streams.h"

#include <gtest/gtest.h>

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
    EXPECT_TRUE(streams_.heardEveryNote());
    EXPECT_EQ(streams_.beginning(), 30000U) << "the buffers that are enqueued at first are silent";
    EXPECT_EQ(streams_.output->state().underruns, 0U);
    EXPECT_EQ(system_.setInputVolume(1, 2, 0.5F), kNoError);
    system_.advance(11025);
    const std::uint32_t last = 2 * 13 * 11025 - 1;
    EXPECT_EQ(streams_.heard[last - 1], noise(last - 1 - 30000));
    EXPECT_EQ(streams_.heard[last], noise(last - 30000) / 2);
    EXPECT_NE(system_.setInputVolume(1, 3, 0.5F), kNoError);
}

TEST_F(LoopbackTest, AStalledWindowThreadLosesNothingForHalfASecondAndAStopDropsWhatIsPosted) {
    streams_.play();
    streams_.listen({}, &runLoop_);
    for (int i = 0; i < 4; ++i) {
        system_.advance(22050);
        runLoop_.turn();
    }
    EXPECT_TRUE(streams_.heardEveryNote());
    const std::size_t heard = streams_.heard.size();
    system_.advance(10 * 44100);
    EXPECT_GT(streams_.input->state().underruns, 0U);
    EXPECT_EQ(streams_.input->stop(), kNoError);
    runLoop_.turn();
    EXPECT_EQ(streams_.heard.size(), heard);
}

TEST_F(LoopbackTest, DoesNotWaitForTheCallbackOfAnotherStream) {
    expectNobodyWaitsForACallback(system_, "loopback", [this] { system_.advance(2205); });
}

TEST(LoopbackClock, PassesTimeByItselfUntilTheStop) {
    LoopbackSystem system;
    Streams streams(system);
    streams.listen({}, nullptr, 441);
    EXPECT_TRUE(waitFor([&] { return streams.heardSamples() > 8820; }));
    streams.input->stop();
    EXPECT_GT(streams.heard.size(), 8820U) << "without the lock, for the thread sanitizer to watch the stop";
}

} // namespace
} // namespace sonotrace
