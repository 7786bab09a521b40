#include "spectrum/FftWindows.h"

#include <gtest/gtest.h>

#include <vector>

namespace sonotrace {
namespace {

// Computed with 200 bits and rounded where the sums round. Weights 97 and 965 of 1000 come out different with
// any other order of the sums, with the quotient i/n taken first, and with a double instead of a single
// quotient.
TEST(FftWindows, EachWindowIsExactToTheBit) {
    const double expected[][3] = {
        {1.0, 1.0, 1.0},
        {0.0, 0.09002394533727381, 0.012041619030626283},
        {0.08000000000000002, 0.16282202971029192, 0.0910782895081762},
        {1.0, 0.9952991872862462, 0.5694168978716214},
        {0.0, 0.3000399062412762, 0.10973431109104521},
        {0.0, 0.3000399062412762, 0.10973431109104521},
        {-1.3877787807814457e-17, 0.03759537919123517, 0.004427783227907836},
        {-2.42861286636753e-17, 0.009046290045032086, 0.0006559755533979989},
        {0.0003628000000000381, 0.012268868793695471, 0.0013761826378495025},
        {-0.0028000000000000316, -0.06745623541308673, -0.008894603688157258},
    };
    std::vector<double> weights(1000);
    for (std::size_t type = 0; type < std::size(expected); ++type) {
        BuildNewWindowCoeffs(static_cast<FftWindowType>(type), 1000, weights.data());
        EXPECT_EQ(weights[0], expected[type][0]) << kFftWindowTitles[type];
        EXPECT_EQ(weights[97], expected[type][1]) << kFftWindowTitles[type];
        EXPECT_EQ(weights[965], expected[type][2]) << kFftWindowTitles[type];
    }
    for (const FftWindowType type : {-1, 10, 42, INT32_MIN, INT32_MAX}) {
        BuildNewWindowCoeffs(type, 1000, weights.data());
        EXPECT_EQ(weights, std::vector<double>(1000, 1.0)) << type;
    }
}

TEST(FftWindows, AnEmptyWindowWritesNothingButItsLogLine) {
    double weight = -1.0;
    testing::internal::CaptureStderr();
    for (const std::int64_t n : {0, -1})
        BuildNewWindowCoeffs(9, n, &weight);
    EXPECT_EQ(weight, -1.0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "BuildNewWindowCoeffs 9 N=0\n"
                                                      "BuildNewWindowCoeffs 9 N=-1\n");
}

} // namespace
} // namespace sonotrace
