#include "measure/Calibration.h"

#include "measure/CleanFrequency.h"
#include "measure/MicrophoneCorrection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>

namespace sonotrace {
namespace {

using enum LevelUnit;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(Calibration, GivesLevelsInEveryUnitAndTakesThemInRelatedOnes) {
    const struct {
        Calibration device;
        double dbfs, value, peak; ///< the level, the same in the unit, and the peak of a full-scale sine
        LevelUnit other;
        double inOther; ///< the level again
    } cases[] = {{{V, 2.0}, -20, 0.2, 2.828427, dBV, -13.979400},
                 {{dBV, 6.020600}, -20, -13.979400, 2.828427, V, 0.2},
                 {{dBu, 4.0}, 0, 4.0, 1.736163, V, 1.227653},
                 {{Pa, 1.0}, -40, 0.01, 1.414214, dBSPL, 53.979400},
                 {{dBSPL, 93.979400}, 0, 93.979400, 1.414214, Pa, 1.0}};
    for (const auto& c : cases) {
        EXPECT_NEAR(*levelInUnit(c.device, c.dbfs), c.value, 1e-5);
        EXPECT_NEAR(*instantaneousValue(c.device, 1.0), c.peak, 1e-5);
        EXPECT_NEAR(*levelDbfs(c.device, c.inOther, c.other), c.dbfs, 1e-5);
        const Calibration again = calibrationFromLevel(c.device.unit, c.dbfs, c.value);
        EXPECT_NEAR(again.fullScale, c.device.fullScale, 1e-5);
    }
    EXPECT_EQ(levelDbfs({V, 2.0}, 0.0, V), -kInf);
    EXPECT_EQ(levelInUnit({V, 2.0}, -kInf), 0.0);
}

TEST(Calibration, IsNoneWhereItMakesNoSense) {
    const auto from = [](int unit) { return static_cast<LevelUnit>(unit); };
    for (const Calibration& c : {Calibration{V, 0}, Calibration{Pa, -1}, Calibration{dBV, kNan},
                                 Calibration{dBSPL, kInf}, Calibration{V, 1e300}, Calibration{dBu, -4000},
                                 Calibration{None, 1}, Calibration{from(99), 1}, Calibration{from(-1), 1}}) {
        EXPECT_FALSE(levelInUnit(c, -20) || levelDbfs(c, 1, V) || instantaneousValue(c, 1)) << c.fullScale;
        EXPECT_EQ(calibrationTrouble(c).empty(), c.fullScale == 1);
    }
    EXPECT_FALSE(levelDbfs({V, 2}, 94, dBSPL) || levelDbfs({V, 2}, -1, V) || levelDbfs({dBV, 2}, kNan, dBV));
}

TEST(MicrophoneCorrection, ReadsTheCommonFormats) {
    for (const char* text :
         {"100 -1.5\n1000 2\n", "1000\t2\t-170\r\n100\t-1.5\t12.5\r\n",
          "\xEF\xBB\xBF\"Sens Factor\"\n100,-1.5,0\n1e3, +2.0, 0",
          "* made 2020\n# a\n; b\n// c\n\n 1/3 octaves\nHz dB\n100,0 -1,5\n1000,0 2,0",
          "Frequenz;Pegel\r100;-1,5\r1000;2,0;right, at last\r", "100.0, -1.5 \n---\n1000.0,2 dB\n"}) {
        std::string trouble;
        const auto correction = MicrophoneCorrection::read(text, trouble);
        EXPECT_EQ(trouble, "") << text;
        const std::pair<double, double> expected[] = {{1, -1.5}, {100, -1.5}, {std::sqrt(1e5), 0.25},
                                                      {1000, 2}, {5e4, 2},    {-1, -1.5}};
        for (const auto& [frequency, level] : expected)
            EXPECT_NEAR(correction.correctionDb(frequency), level, 1e-12) << text << frequency;
    }
    EXPECT_EQ(MicrophoneCorrection().correctionDb(1000), 0.0);
}

TEST(MicrophoneCorrection, SaysWhatIsWrongAndCorrectsNothingThen) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "no line holds a frequency and a level"},
        {std::string("\0\xFF\xFE"
                     "1\0",
                     5),
         "no line holds a frequency and a level"},
        {"20 1\n30\n", "line 2: not a frequency and a level"},
        {"# a\r\n\r\n1.000,5\t2\r\n", "line 3: not a frequency and a level"},
        {"20 nan", "line 1: the level is beyond 200 dB"},
        {"20 1e999", "line 1: the level is beyond 200 dB"},
        {"20 -201", "line 1: the level is beyond 200 dB"},
        {"-20 1", "line 1: the frequency is not above 0"},
        {"1e999 1", "line 1: the frequency is not above 0"},
        {"20 1\n30 1\n20 2", "two lines are for the same frequency, about 20 Hz"},
        {std::string(100'000, '\n') + "20 1", "line 100001: too many lines"},
        {std::string().append(10'000'001, ' '), "the file is too large"}};
    for (const auto& [text, expected] : cases) {
        std::string trouble;
        EXPECT_TRUE(MicrophoneCorrection::read(text, trouble).isEmpty());
        EXPECT_EQ(trouble, expected);
    }
    std::string trouble;
    const auto far = MicrophoneCorrection::read("5e-324 1\n1.7e308 3", trouble);
    EXPECT_NEAR(far.correctionDb(1), 2, 0.1);
}

TEST(CleanFrequency, IsTheNearestThatTheTableRepeatsExactly) {
    const std::tuple<double, std::int64_t, double> cases[] = {
        {1000, 0, 1001.07},  {998.8, 0, 996.66},      {0.1, 0, 4.41},
        {1e9, 0, 21997.08},  {kNan, 0, 4.41},         {1000, 32768, 2756.25},
        {9000, 64, 8268.75}, {1e9, 131072, 19293.75}, {1000, 2000, 992.25}};
    for (const auto& [frequency, block, expected] : cases) {
        const double nearest = block == 0 ? nearestCleanFrequency(frequency, 22000)
                                          : nearestCleanFrequencyInBlock(frequency, block, 22000);
        EXPECT_EQ(nearest, expected) << frequency << " " << block;
    }
}

} // namespace
} // namespace sonotrace
