#include "waterfall/WaterfallTransform.h"

#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <vector>

namespace sonotrace {
namespace {

/// Not periodic in any transform length, and different at every place.
float sampleAt(std::int32_t n) {
    return static_cast<float>((std::int64_t{n} * 7919) % 2001 - 1000);
}

std::complex<double> coefficient(const std::vector<float>& x, std::int64_t k) {
    const auto length = static_cast<std::int64_t>(x.size());
    std::complex<double> sum = 0.0;
    for (std::int64_t n = 0; n < length; ++n)
        sum += static_cast<double>(x[static_cast<std::size_t>(n)]) *
               std::polar(1.0, -6.283185307179586 * static_cast<double>(k * n % length) /
                                   static_cast<double>(length));
    return sum;
}

TEST(WaterfallTransform, GivesTwiceTheFourierCoefficientsWithTheHighestOneBesideTheFirst) {
    WaterfallParameters parameters;
    WaterfallTransform transform(parameters);
    AlignedFloats frame(kLargestFrameLength + 2);
    for (std::int32_t log2Length = 6; log2Length <= 17; ++log2Length) {
        SCOPED_TRACE(log2Length);
        const std::int32_t length = 1 << log2Length;
        std::vector<float> input;
        for (std::int32_t n = 0; n < length; ++n)
            input.push_back(frame[static_cast<std::size_t>(n)] = sampleAt(n));
        const auto behind = static_cast<std::size_t>(length);
        frame[behind] = 11.0F;
        frame[behind + 1] = 12.0F;

        parameters.fftSizeLog2 = log2Length;
        ASSERT_EQ(transform.transform(frame), length);

        const double tolerance = 1e-3 * length; // of magnitudes that add up `length` samples of about 500
        EXPECT_NEAR(static_cast<double>(frame[0]), 2.0 * coefficient(input, 0).real(), tolerance);
        EXPECT_NEAR(static_cast<double>(frame[1]), 2.0 * coefficient(input, length / 2).real(), tolerance);
        for (const std::int32_t k : {1, 2, 5, length / 8 + 1, length / 4, length / 2 - 1}) {
            const std::complex<double> expected = 2.0 * coefficient(input, k);
            const auto pair = static_cast<std::size_t>(2 * k);
            EXPECT_NEAR(static_cast<double>(frame[pair]), expected.real(), tolerance) << k;
            EXPECT_NEAR(static_cast<double>(frame[pair + 1]), expected.imag(), tolerance) << k;
        }
        EXPECT_EQ(frame[behind], 11.0F);
        EXPECT_EQ(frame[behind + 1], 12.0F);
    }
}

TEST(WaterfallTransform, TakesUpTheRequestedLengthWithinTheMenusRangeAndSaysSoOnce) {
    struct Case {
        std::int32_t requested;
        const char* log;
    };
    WaterfallParameters parameters;
    WaterfallTransform transform(parameters);
    AlignedFloats frame(kLargestFrameLength);
    for (const Case& step : {Case{13, "log2SampleLength=0  waterfallFftLen=8192\n"
                                      "setting log2SampleLength=13  waterfallFftLen=8192\n"
                                      "BufferMemory malloc: 8192\nvDSP_create_fftsetup  13\n"},
                             Case{13, ""},
                             Case{30, "log2SampleLength=13  waterfallFftLen=8192\n"
                                      "setting log2SampleLength=17  waterfallFftLen=131072\n"
                                      "BufferMemory malloc: 131072\nvDSP_create_fftsetup  17\n"},
                             Case{-2000000000, "log2SampleLength=17  waterfallFftLen=131072\n"
                                               "setting log2SampleLength=6  waterfallFftLen=64\n"
                                               "BufferMemory malloc: 64\nvDSP_create_fftsetup  6\n"}}) {
        parameters.fftSizeLog2 = step.requested;
        testing::internal::CaptureStderr();
        transform.transform(frame);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), step.log);
    }
}

} // namespace
} // namespace sonotrace
