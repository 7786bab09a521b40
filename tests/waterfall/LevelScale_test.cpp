#include "waterfall/ColorMap.h"
#include "waterfall/LevelSteps.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace sonotrace {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(LevelScale, PutsMagnitudesOnStepsBetweenFloorAndCeiling) {
    struct Case {
        float minDB, maxDB;
        double magnitude;
        std::int32_t step;
    };
    for (const Case& c :
         {Case{25, 75, 54.0, 0}, Case{25, 75, 1000.0, 92}, Case{25, 75, 10000.0, 166},
          Case{25, 75, 157700.0, 253}, Case{25, 75, 162755.0, 254}, Case{25, 75, kInfinity, 254},
          Case{25, 75, kNotANumber, 0}, Case{-50, 50, -7.0, 127}, // silence in mid-scale
          Case{75, 25, 1.0, 254}, Case{75, 25, 10000.0, 88},      // crossed: loud is dark
          Case{50, 50, 1.0, 0}, Case{50, 50, 10000.0, 254}, Case{0, 0, 1.0, 0}}) {
        LevelSteps steps;
        steps.setLimits(c.minDB, c.maxDB);
        EXPECT_EQ(steps.step(c.magnitude), c.step) << c.minDB << ".." << c.maxDB << " " << c.magnitude;
    }
}

TEST(LevelScale, TableGivesTheComputedStepForEveryMagnitude) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> logarithm(-1.0, 46.0);
    for (const auto& [minDB, maxDB] : {std::pair{25.0F, 75.0F},
                                       {-80.0F, 120.0F},
                                       {50.0F, 50.001F},
                                       {50.0F, std::nextafter(50.0F, 51.0F)},
                                       {-9999.0F, 9999.0F},
                                       {0.0F, 0.001F},
                                       {280.0F, 300.0F},
                                       {-1e9F, 75.0F},
                                       {75.0F, 25.0F}}) {
        SCOPED_TRACE(testing::Message() << minDB << ".." << maxDB);
        const LevelScale scale(minDB, maxDB);
        LevelSteps steps;
        steps.setLimits(minDB, maxDB);
        int wrong = 0;
        for (int i = 0; i < 3000; ++i) {
            const double magnitude = std::exp(logarithm(random));
            wrong += steps.step(magnitude) != scale.step(magnitude);
        }
        for (std::int32_t step = 1; step <= 255; ++step) {
            // Around the very magnitude where a step begins, where the table alone is one off.
            double magnitude = scale.magnitudeOfStep(step) * (1.0 - 1e-14);
            for (int i = 0; i < 100; ++i) {
                wrong += steps.step(magnitude) != scale.step(magnitude);
                magnitude = std::nextafter(magnitude, kInfinity);
            }
        }
        EXPECT_EQ(wrong, 0);
    }
}

TEST(ColorMap, RunsFromBlackOverBlueCyanGreenYellowAndRedToPurple) {
    struct Entry {
        std::size_t step;
        std::uint32_t word; // alpha, blue, green, red
    };
    ColorMap map;
    for (const Entry& entry :
         {Entry{0, 0xFF000000}, Entry{42, 0xFFF90000}, Entry{43, 0xFFFF0000}, Entry{44, 0xFFFF0500},
          Entry{86, 0xFFFFFF00}, Entry{87, 0xFFFFFF00}, Entry{88, 0xFFF8FF00}, Entry{119, 0xFF00FF00},
          Entry{121, 0xFF00FF07}, Entry{153, 0xFF00FFFF}, Entry{155, 0xFF00FBFF}, Entry{216, 0xFF0000FF},
          Entry{218, 0xFF0300FF}, Entry{255, 0xFF8000FF}})
        EXPECT_EQ(map.colors()[entry.step], entry.word) << entry.step;
    EXPECT_EQ(map.greys()[200], 0xFFC8C8C8);

    map.initColorTable(); // the tables are full
    EXPECT_EQ(map.colors()[42], 0xFFF90000);
}

} // namespace
} // namespace sonotrace
