#include "generator/OutputRender.h"

#include "support/RenderBench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>

namespace sonotrace {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

// The checksums are of signals rendered sample by sample by a program written independently of this one.
// Those of the noises pin the random numbers too.

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
    const auto peak = [&bench] { return std::ranges::max(bench.render()); };
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
            for (const GeneratorSettings& settings : {GeneratorSettings{value, 0, 1, 1, waveform, 1},
                                                      {1000, value, 1, 1, waveform, 1},
                                                      {1000, 90, value, -value, waveform, 1},
                                                      {value, value, value, value, waveform, INT32_MAX}}) {
                bench.set(0, settings);
                bench.render();
            }
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

struct SweepCase {
    const char* name;
    double start, end, rate;
    int reverse, log, oneShot, voices, buffers;
    std::uint32_t checksum; ///< of an independent rendering
    double frequency;       ///< at the end
    int enabled, done;
};

TEST(Sweep, EveryKindOfPassIsExact) {
    const SweepCase cases[] = {
        {"linear", 20, 20000, 90000, 0, 0, 0, 0, 4, 0x4138909A, 854.6938775510173, 1, 0},
        {"linear, once", 20, 20000, 90000, 0, 0, 1, 0, 4, 0xFD41258C, 446.53061224489664, 0, 1},
        {"logarithmic", 20, 20000, 90000, 0, 1, 0, 0, 12, 0xDF0928F2, 1725.7937818996108, 1, 0},
        {"back and forth", 500, 3000, 9000, 1, 0, 0, 0, 8, 0x1A653638, 2837.9591836729596, 1, 0},
        {"downward", 9000, 30, 90000, 0, 0, 0, 0, 4, 0x8526DE4B, 4071.4285714275015, 1, 0},
        {"down and back, once", 9000, 300, 90000, 1, 0, 1, 0, 10, 0x6AD309EA, 5995.918367346283, 0, 1},
        {"down and back", 9000, 300, 90000, 1, 0, 0, 0, 12, 0xFA2705FC, 644.8979591836705, 1, 0},
        {"among voices", 20, 20000, 90000, 0, 1, 0, 3, 4, 0x77EBD21E, 61.59464977538537, 1, 0},
    };
    for (const SweepCase& pass : cases) {
        RenderBench bench;
        for (int i = 0; i < pass.voices; ++i)
            bench.set(static_cast<std::size_t>(i), {1000, 0, 1, 1, 0, 1});
        SweepParameters& sweep = bench.sweep;
        bench.setSweep(pass.start, pass.end, pass.rate);
        sweep.reverse = pass.reverse;
        sweep.log = pass.log;
        if (pass.oneShot)
            sweep.startOneShot();
        EXPECT_EQ(checksum(bench.render(pass.buffers)), pass.checksum) << pass.name;
        EXPECT_DOUBLE_EQ(sweep.currentFrequency, pass.frequency) << pass.name;
        EXPECT_EQ(sweep.enabled, pass.enabled) << pass.name;
        EXPECT_EQ(sweep.done, pass.done) << pass.name;
        EXPECT_EQ(sweep.oneShot, 0) << pass.name;
    }
}

TEST(Sweep, AOneShotEndsOnTheFrameThatPassesTheEnd) {
    RenderBench bench;
    bench.setSweep(20, 20000, 90000);
    bench.sweep.rightEnabled = 0;
    bench.sweep.startOneShot();
    const auto samples = bench.render(3);
    std::size_t lastHeard = 0;
    for (std::size_t i = 0; i < samples.size(); ++i)
        lastHeard = samples[i] != 0 ? i : lastHeard;
    EXPECT_EQ(lastHeard, 2 * 9790U) << "on the left: the right channel is not enabled";
}

TEST(Sweep, SurvivesWhateverIsTypedAndAGoodValueRecoversAtOnce) {
    const double nasty[] = {0, -5, 1e308, -1e308, 5e-324, kInfinity, -kInfinity, kNan};
    RenderBench bench;
    SweepParameters& sweep = bench.sweep;
    sweep.leftEnabled = sweep.rightEnabled = 1;
    std::atomic<double>* const fields[] = {&sweep.startFrequency, &sweep.endFrequency, &sweep.rate,
                                           &sweep.amplitudeLeft, &sweep.amplitudeRight};
    const auto set = [&](const std::array<double, 5>& values, int switches) {
        for (std::size_t i = 0; i < values.size(); ++i)
            *fields[i] = values[i];
        sweep.enabled = 1;
        sweep.reverse = switches & 1;
        sweep.log = (switches & 2) / 2;
        sweep.oneShot = (switches & 4) / 4;
    };
    for (int switches = 0; switches < 8; ++switches) {
        for (const double bad : nasty) {
            for (const std::array<double, 5>& typed : {std::array{bad, 20000.0, 90000.0, 1.0, 1.0},
                                                       {20.0, bad, 90000.0, 1.0, 1.0},
                                                       {20.0, 20000.0, bad, 1.0, 1.0},
                                                       {20.0, 20000.0, 90000.0, bad, bad},
                                                       {bad, bad, bad, bad, bad}}) {
                set(typed, switches);
                bench.render();
                // From anywhere plausible back to 441 Hz within a few frames.
                set({441.0, 442.0, 1e9, 1.0, 1.0}, 0);
                bench.render();
                sweep.rate = 0;
                const auto samples = bench.render();
                SCOPED_TRACE(testing::Message() << testing::PrintToString(typed) << ", " << switches);
                ASSERT_GT(std::ranges::max(samples), 32700);
                for (std::size_t i = 0; i < samples.size() - 200; i += 2)
                    ASSERT_NEAR(samples[i], samples[i + 200], 200);
            }
        }
    }
}

} // namespace
} // namespace sonotrace
