#include "spectrum/FftWindows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sonotrace {
namespace {

std::vector<double> window(FftWindowType type, std::int64_t n) {
    std::vector<double> weights(static_cast<std::size_t>(n), -1.0);
    BuildNewWindowCoeffs(type, n, weights.data());
    return weights;
}

// Computed with 200 bits and rounded where the sums round. Weights 97 and 965 of 1000 come out different with
// any other order of the sums, with the quotient i/n taken first, and with a double instead of a single
// quotient.
TEST(FftWindows, EachWindowIsExactToTheBit) {
    struct Row {
        double start, the97thOf1000, the965thOf1000, the30001stOf131072;
    };
    const Row rows[] = {
        {1.0, 1.0, 1.0, 1.0},
        {0.0, 0.09002394533727381, 0.012041619030626283, 0.43387359991320035},
        {0.08000000000000002, 0.16282202971029192, 0.0910782895081762, 0.47916371192014434},
        {1.0, 0.9952991872862462, 0.5694168978716214, 0.9739189714916253},
        {0.0, 0.3000399062412762, 0.10973431109104521, 0.6586908227030345},
        {0.0, 0.3000399062412762, 0.10973431109104521, 0.6586908227030345},
        {-1.3877787807814457e-17, 0.03759537919123517, 0.004427783227907836, 0.2766721284178016},
        {-2.42861286636753e-17, 0.009046290045032086, 0.0006559755533979989, 0.1570061014485788},
        {0.0003628000000000381, 0.012268868793695471, 0.0013761826378495025, 0.1711892612920783},
        {-0.0028000000000000316, -0.06745623541308673, -0.008894603688157258, -0.3185329797530798},
    };
    FftWindowType type = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(kFftWindowTitles[static_cast<std::size_t>(type)]);
        const std::vector<double> weights = window(type, 1000);
        EXPECT_EQ(weights[0], row.start);
        EXPECT_EQ(weights[97], row.the97thOf1000);
        EXPECT_EQ(weights[965], row.the965thOf1000);
        EXPECT_EQ(window(type, 131072)[30001], row.the30001stOf131072);
        ++type;
    }
}

TEST(FftWindows, NumbersOutsideTheMenuAreRectangular) {
    for (const FftWindowType type : {-1, 10, 42, INT32_MIN, INT32_MAX})
        EXPECT_EQ(window(type, 3), (std::vector<double>{1.0, 1.0, 1.0})) << type;
}

TEST(FftWindows, AnEmptyWindowWritesNothingButItsLogLine) {
    double untouched = -1.0;
    testing::internal::CaptureStderr();
    for (const std::int64_t n : {0, -1})
        BuildNewWindowCoeffs(9, n, &untouched);
    BuildNewWindowCoeffs(1, 1, &untouched);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "BuildNewWindowCoeffs 9 N=0\n"
                                                      "BuildNewWindowCoeffs 9 N=-1\n"
                                                      "BuildNewWindowCoeffs 1 N=1\n");
    EXPECT_EQ(untouched, 0.0); // written by the last call alone
}

} // namespace
} // namespace sonotrace
