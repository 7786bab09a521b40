#include "platform/LevelAccumulator.h"

#include <gtest/gtest.h>

#include <array>

namespace sonotrace {
namespace {

TEST(LevelAccumulator, MeasuresWhatHasComeSinceTheLastReadingOrRepeatsIt) {
    using Levels = std::array<float, 4>; // average and peak of left, then of right
    LevelAccumulator level;
    const auto reading = [&level] {
        level.read({}); // no room: nothing is written, but it counts
        LevelMeter channels[2];
        level.read(channels);
        const auto& [left, right] = channels;
        return Levels{left.averagePower, left.peakPower, right.averagePower, right.peakPower};
    };
    const std::int16_t loud[] = {16384, -32768, 0, 0};
    const std::int16_t quiet[] = {-4096, 0, 0, 8192};
    level.add(loud);
    EXPECT_EQ(reading(), Levels()) << "off until it is switched on";
    level.enable(true);
    level.add(loud);
    level.add(quiet);
    EXPECT_EQ(reading(), (Levels{0.15625, 0.5, 0.3125, 1}));
    level.add(quiet);
    EXPECT_EQ(reading(), (Levels{0.0625, 0.125, 0.125, 0.25})) << "it falls";
}

} // namespace
} // namespace sonotrace
