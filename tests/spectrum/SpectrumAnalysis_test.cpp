#include "spectrum/SpectrumAnalysis.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace sonotrace {
namespace {

constexpr std::size_t kBufferFrames = 11025;

/// The analysis and how many spectra it has announced.
struct Bench {
    int spectra = 0;
    SpectrumAnalysis analysis{[this] { ++spectra; }};

    explicit Bench(std::int32_t fftSize) { analysis.setFftSize(fftSize); }

    void capture(std::size_t frames, std::int16_t left = 0, std::int16_t right = 0) {
        std::vector<std::int16_t> buffer;
        for (std::size_t i = 0; i < frames; ++i)
            buffer.insert(buffer.end(), {left, right});
        analysis.capture(buffer);
    }

    double power(std::size_t bin) const { return analysis.powerSpectrum()[bin]; }
};

TEST(SpectrumAnalysis, ABlockIsAnalysedWhenMoreThanABlockWaits) {
    Bench small(64);
    small.capture(64);
    EXPECT_EQ(small.spectra, 0);
    small.capture(kBufferFrames - 64);
    EXPECT_EQ(small.spectra, 172); // 17 samples are left
    small.capture(48);
    EXPECT_EQ(small.spectra, 173);

    // 307 samples are left of the first three buffers, and as many more of each three after, until the
    // surplus has grown to a whole buffer. The ring wraps in buffer 46.
    Bench large(32768);
    int buffers = 0;
    for (const auto& [count, spectra] :
         {std::pair{2, 0}, {3, 1}, {5, 1}, {6, 2}, {45, 15}, {104, 34}, {106, 35}, {107, 36}}) {
        for (; buffers < count; ++buffers)
            large.capture(kBufferFrames);
        EXPECT_EQ(large.spectra, spectra) << count;
    }
}

TEST(SpectrumAnalysis, EverySpectrumIsThatOfItsOwnBlockWhereverTheRingWraps) {
    constexpr std::size_t kPoints = 64;
    std::vector<double> sums; // of every block of the signal
    std::size_t block = 0;
    std::size_t wrong = 0;
    const SpectrumAnalysis* source = nullptr;
    SpectrumAnalysis analysis([&] {
        wrong += source->powerSpectrum()[0] != sums[block] * sums[block];
        ++block;
    });
    source = &analysis;
    analysis.setFftSize(kPoints);
    std::uint32_t state = 1;
    std::vector<std::int16_t> buffer(2 * kBufferFrames);
    for (std::size_t frame = 0; frame < 96 * kBufferFrames; ++frame) { // a little over two rings
        state = state * 1664525U + 1013904223U;
        const auto left = static_cast<std::int16_t>(state >> 16U);
        const auto right = static_cast<std::int16_t>(left / 2);
        buffer[frame % kBufferFrames * 2] = left;
        buffer[frame % kBufferFrames * 2 + 1] = right;
        if (frame % kPoints == 0)
            sums.push_back(0);
        const int sum = left + right; // wraps around beyond 16 bits
        sums.back() += sum > 32767 ? sum - 65536 : sum < -32768 ? sum + 65536 : sum;
        if (frame % kBufferFrames == kBufferFrames - 1)
            analysis.capture(buffer);
    }
    EXPECT_EQ(block, 16537U);
    EXPECT_EQ(wrong, 0U);
}

TEST(SpectrumAnalysis, AveragesSamplesBeforeTheTransform) {
    for (const auto& [numAvg, blocks] :
         {std::pair{1, 1}, {0, 1}, {-3, 1}, {INT32_MIN, 1}, {4, 4}, {250, 250}}) {
        Bench bench(64);
        bench.analysis.setNumAvg(numAvg);
        const auto frames = static_cast<std::size_t>(64 * blocks);
        bench.capture(frames / 2, 300, 0);
        bench.capture(frames / 2, -100, 0);
        EXPECT_EQ(bench.spectra, 0) << numAvg;
        bench.capture(1);
        EXPECT_EQ(bench.spectra, 1) << numAvg;
        EXPECT_EQ(bench.power(0), 6400.0 * 6400.0)
            << numAvg; // 64 times the mean of 100, not the mean of powers
    }
}

TEST(SpectrumAnalysis, ANewSizeDropsTheSumOfAnAverageButNotItsCount) {
    Bench bench(64);
    bench.analysis.setNumAvg(4);
    bench.capture(128 + 1, 300, 0); // two blocks counted, a sample over
    bench.analysis.setFftSize(128);
    bench.capture(256, 300, 0);
    EXPECT_EQ(bench.spectra, 1);
    EXPECT_EQ(bench.power(0), 19200.0 * 19200.0); // two blocks divided by four

    bench.capture(256, 300, 0);
    bench.analysis.setWindowType(4); // keeps both
    bench.capture(256, 300, 0);
    EXPECT_EQ(bench.spectra, 2);
    EXPECT_NEAR(bench.power(0), 597556659.1101931, 1e-3); // the half sine's sum is cot(pi / 256)
}

TEST(SpectrumAnalysis, WindowsAreBuiltWhenABlockNeedsThem) {
    testing::internal::CaptureStderr();
    Bench bench(64);
    bench.analysis.setWindowType(1);
    bench.analysis.setFftSize(128);
    bench.capture(2 * 128 + 1, 1000, 0); // both the size and the window are new to the first block
    bench.analysis.setWindowType(42);
    bench.capture(128);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "BuildNewWindowCoeffs 1 N=128\n"
                                                      "BuildNewWindowCoeffs 1 N=128\n"
                                                      "BuildNewWindowCoeffs 42 N=128\n");
}

TEST(SpectrumAnalysis, SizesOutsideTheMenuAndCapturesOfAnyLengthDoNoHarm) {
    Bench bench(64);
    for (const std::int32_t size : {0, -64, 1, 32, 65, 262144, INT32_MIN, INT32_MAX})
        bench.analysis.setFftSize(size);
    EXPECT_EQ(bench.analysis.fftSize(), 64.0);
    bench.analysis.capture({});
    bench.analysis.capture(std::vector<std::int16_t>(1, 5)); // half a frame
    bench.capture(65, 20000, 20000);                         // a constant -25536
    EXPECT_EQ(bench.power(0), 2670949564416.0);
    EXPECT_EQ(bench.analysis.maxPower(), 2670949564416.0);
    EXPECT_EQ(bench.analysis.minPower(), 0.0);
    bench.capture(600000, 2, 0); // more than the ring holds
    EXPECT_EQ(bench.power(0), 16384.0);
}

} // namespace
} // namespace sonotrace
