#include "base/AxisTicks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace sonotrace {
namespace {

std::string labels(const Axis& axis, int most) {
    std::string all;
    for (const AxisTick& tick : axisTicks(axis, most))
        if (!tick.label.empty())
            all += tick.label + " ";
    return all;
}

TEST(AxisTicks, AreRoundValuesAtTheirPlaces) {
    EXPECT_EQ(labels({0, 5000}, 10), "0 500 1000 1500 2000 2500 3000 3500 4000 4500 5000 ");
    EXPECT_EQ(labels({-0.3, 0.3}, 3), "-0.2 0.0 0.2 ");
    EXPECT_EQ(labels({7, -7}, 7), "-6 -4 -2 0 2 4 6 ");
    EXPECT_EQ(labels({20, 20000, true}, 20), "20 50 100 200 500 1k 2k 5k 10k 20k ");
    EXPECT_EQ(labels({1, 19952.6, true}, 5), "1 10 100 1k 10k ");
    const auto ticks = axisTicks({100, 200}, 2); // 100, 110 ... 200
    ASSERT_EQ(ticks.size(), 11U);
    EXPECT_DOUBLE_EQ(ticks[3].place, 0.3);
}

TEST(AxisTicks, SurviveAxesThatCannotBeDrawn) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double most = std::numeric_limits<double>::max();
    for (const Axis& axis : {Axis{5, 5}, Axis{0, inf}, Axis{nan, 1}, Axis{-most, most}, Axis{0, 10, true},
                             Axis{1e17, 1e17 + 64}, Axis{0, 5e-324}})
        EXPECT_TRUE(axisTicks(axis, 10).empty()) << axis.from << " to " << axis.to;
    EXPECT_LT(axisTicks({-1e300, 1e300}, 10).size(), 100U);
}

} // namespace
} // namespace sonotrace
