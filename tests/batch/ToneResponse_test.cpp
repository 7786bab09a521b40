#include "batch/CommandError.h"
#include "batch/PlayAndListen.h"
#include "batch/ToneResponse.h"
#include "platform/loopback/LoopbackSystem.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace sonotrace {
namespace {

class ToneResponse : public testing::Test {
protected:
    ToneResponse() : bench_(system_, {}, [this] { system_.advance(4410); }) {}

    LoopbackSystem system_{LoopbackSystem::Clock::Manual};
    PlayAndListen bench_;
    const Hear hear_ = [this](const SettingsOfAll& generators) {
        bench_.play(generators);
        return bench_.listen(22050, kToneBlock);
    };
};

TEST_F(ToneResponse, IsWhatTheWayFromOutputToInputDoesToEachTone) {
    ASSERT_EQ(system_.setInputVolume(1, 2, 0.25F), kNoError);
    const ResponseQuestion question{.points = 30};
    std::vector<int> parts;
    const auto points = measureResponse(hear_, question, [&](int done, int all) {
        EXPECT_EQ(all, 4); // silence, and 30 tones by 13
        parts.push_back(done);
    });
    EXPECT_EQ(parts, (std::vector{0, 1, 2, 3, 4}));
    ASSERT_EQ(points.size(), 30U);
    EXPECT_NEAR(points.front().frequencyHz, 20.0, 1.0);
    EXPECT_NEAR(points.back().frequencyHz, 20000.0, 1.0);
    for (const ResponsePoint& point : points) {
        ASSERT_TRUE(point.gainDb[0] && point.gainDb[1]) << point.frequencyHz;
        EXPECT_NEAR(*point.gainDb[0], 0.0, 0.001) << point.frequencyHz;
        EXPECT_NEAR(*point.gainDb[1], 20.0 * std::log10(0.25), 0.01)
            << point.frequencyHz; // truncated samples
    }
}

TEST_F(ToneResponse, HasNoValueWhereNothingIsHeard) {
    ASSERT_EQ(system_.setInputVolume(1, 1, 0.0F), kNoError);
    const auto points = measureResponse(hear_, {.points = 3}, [](int, int) {});
    for (const ResponsePoint& point : points) {
        EXPECT_FALSE(point.gainDb[0]) << point.frequencyHz;
        EXPECT_TRUE(point.gainDb[1]) << point.frequencyHz;
    }
}

TEST(ToneResponsePlan, TellsTonesOfOneTimeApart) {
    // Half a bin from point to point: most fall together, and those that are left cannot be played together.
    const auto frequencies = responseFrequencies({.fromHz = 1000, .toHz = 1010, .points = 31});
    ASSERT_EQ(frequencies.size(), 8U); // 2 * 44100 / 65536 = 1.35 Hz apart
    std::size_t tones = 0;
    for (const auto& round : tonesTogether(frequencies, 13)) {
        EXPECT_EQ(round.size(), 1U);
        tones += round.size();
    }
    EXPECT_EQ(tones, frequencies.size());
    // Whatever is asked for lies between the first bins and the last.
    for (const double frequency : responseFrequencies({.fromHz = 0.001, .toHz = 1e9, .points = 100})) {
        EXPECT_GT(frequency, 1.0);
        EXPECT_LT(frequency, 22050.0);
    }
}

TEST(PlayAndListen, SaysWhatKeepsItFromMeasuring) {
    LoopbackSystem system(LoopbackSystem::Clock::Manual);
    EXPECT_THROW(PlayAndListen(system, {"nowhere", ""}, [] {}), CommandError);
    PlayAndListen bench(system, {}, [] { throw CommandError("interrupted"); });
    EXPECT_THROW(bench.listen(0, 10), CommandError);
}

} // namespace
} // namespace sonotrace
