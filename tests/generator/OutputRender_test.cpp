#include "generator/OutputRender.h"

#include "support/Checksum.h"
#include "support/RenderBench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace sonotrace {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

// The checksums are of signals rendered sample by sample by a program written independently of this one.

TEST(OutputRender, EachWaveformIsExactOverThreeBuffers) {
    const std::uint32_t expected[] = {0x4C9BC327, 0xE5D6C8E4, 0x76B53F0B, 0x0712314D,
                                      0x4E42C3DD, 0x6A5C0F8A, 0x7E500A2A};
    for (std::int32_t waveform = 0; waveform < 7; ++waveform) {
        RenderBench bench;
        bench.set(0, {1234.5, 77.25, 0.9, 0.3, waveform, 1});
        EXPECT_EQ(checksum(bench.render(3)), expected[waveform])
            << waveformTitles()[static_cast<std::size_t>(waveform)];
    }
}

TEST(OutputRender, AMixOfAllWaveformsWithPhasesChangedBetweenBuffersIsExact) {
    RenderBench bench;
    const auto fill = [&bench](double sign, double stretch) {
        for (int i = 0; i < kGeneratorCount; ++i) {
            bench.set(static_cast<std::size_t>(i), {(100 + 777.7 * i) * stretch, sign * (-350 + 50 * i),
                                                    1 - 0.05 * i, 0.2 + 0.05 * i, i % 8, 1});
        }
    };
    fill(1, 1);
    auto samples = bench.render();
    fill(-1, 1.5);
    const auto second = bench.render();
    samples.insert(samples.end(), second.begin(), second.end());
    EXPECT_EQ(checksum(samples), 0x8545F157U);
}

TEST(OutputRender, TheHighestFrequenciesAndPhasesAreExact) {
    RenderBench bench;
    for (int i = 0; i < kGeneratorCount; ++i)
        bench.set(static_cast<std::size_t>(i), {22000.0 - 3 * i, 359, 1, 1, i % 4, 1});
    EXPECT_EQ(checksum(bench.render(4)), 0xFEB67E14U);
}

TEST(OutputRender, VoicesShareFullScaleAndAnOffVoiceStillCounts) {
    RenderBench bench;
    const auto peak = [&bench] {
        const auto samples = bench.render();
        return std::ranges::max(samples);
    };
    EXPECT_EQ(peak(), 0); // digital silence
    bench.set(0, {1000, 0, 1, 1, 1, 1});
    EXPECT_EQ(peak(), 32767);
    bench.set(1, {1000, 0, 0, 0, 7, 1});
    EXPECT_EQ(peak(), 16383);
    bench.sweep.enabled = 1; // without amplitude, but it counts as well
    EXPECT_EQ(peak(), 10922);
    bench.set(1, {1000, 0, 0, 0, 99, 1});
    EXPECT_EQ(peak(), 10922);
}

TEST(OutputRender, TheLowestSampleHasNoNegative) {
    RenderBench bench;
    // The pulse's constant level is 32767 x gain before the inversion; this gain wraps it to -32768.
    bench.set(0, {1, 0, 32768.0 / 32767.0, 1, 6, 1});
    const auto samples = bench.render();
    EXPECT_EQ(samples[0], -32768);
    EXPECT_EQ(samples[1], -32767);
}

TEST(OutputRender, SyncStartsAllVoicesTogetherButATriangleKeepsItsDirection) {
    RenderBench bench;
    bench.set(0, {997, 0, 1, 1, 0, 1});
    const auto first = bench.render();
    EXPECT_NE(bench.render(), first);
    bench.output.syncPhases();
    EXPECT_EQ(bench.render(), first);

    bench.set(0, {10, 0, 1, 1, 3, 1});
    const auto slopeAtStart = [&bench] {
        bench.output.syncPhases();
        const auto samples = bench.render();
        return samples[20] - samples[0];
    };
    bench.output.syncPhases();
    EXPECT_GT(slopeAtStart(), 0); // falling, seen after the inversion
    bool risen = false;
    for (int i = 0; i < 10 && !risen; ++i) {
        bench.render();
        risen = slopeAtStart() < 0;
    }
    EXPECT_TRUE(risen);
}

TEST(OutputRender, SurvivesWhateverTheBankHoldsAndRecoversWithSaneSettings) {
    const double nasty[] = {0,     -1,     -22000, 44100,     44101,      1e6, 1e18,
                            1e300, -1e300, 5e-324, kInfinity, -kInfinity, kNan};
    for (std::int32_t waveform = -1; waveform <= 8; ++waveform) {
        RenderBench bench;
        for (const double value : nasty) {
            bench.set(0, {value, 0, 1, 1, waveform, 1});
            bench.render();
            bench.set(0, {1000, value, 1, 1, waveform, 1});
            bench.render();
            bench.set(0, {1000, 90, value, -value, waveform, 1});
            bench.render();
            bench.set(0, {value, value, value, value, waveform, std::numeric_limits<std::int32_t>::max()});
            bench.render();
        }
        if (waveform < 0 || waveform > 3)
            continue;
        bench.output.syncPhases();
        bench.set(0, {441, 0, 1, 1, waveform, 1});
        const auto samples = bench.render(4);
        const auto [lowest, highest] = std::ranges::minmax(samples);
        EXPECT_GT(highest, 32000) << waveform;
        EXPECT_LT(lowest, -32000) << waveform;
        for (std::size_t i = 20000; i < samples.size() - 200; i += 2)
            ASSERT_NEAR(samples[i], samples[i + 200], 700)
                << waveform << " at " << i; // 441 Hz: 100 frames a period
    }
}

TEST(OutputRender, NeverReadsPastTheTableHoweverTheSumRounds) {
    RenderBench bench;
    // The table is alone in memory, so that the address sanitizer sees a read past its end.
    const auto table = std::make_unique<SineTable>();
    OutputRender output(bench.bank, bench.sweep, *table, bench.recorder);
    // The position is the last number below 10000. Another 10000 makes it 20000 in double precision.
    bench.set(0, {44100, 359.99999999999994, 1, 1, 0, 1});
    std::vector<std::int16_t> samples(10000);
    output.render(samples);
    EXPECT_GE(*std::ranges::min_element(samples), 0);
    EXPECT_LE(*std::ranges::max_element(samples), 21); // entry 9999 is -20.6, and the output is inverted
}

} // namespace
} // namespace sonotrace
