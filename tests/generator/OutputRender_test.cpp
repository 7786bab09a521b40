#include "generator/OutputRender.h"

#include "support/RenderBench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>

namespace sonotrace {
namespace {

/// 441 Hz at half of the full scale: a period of 100 frames.
void expectTone(std::span<const std::int16_t> samples, std::size_t channel) {
    int highest = 0;
    for (std::size_t i = 200 + channel; i < samples.size(); i += 2) {
        highest = std::max<int>(highest, samples[i]);
        ASSERT_NEAR(samples[i], samples[i - 200], 700) << i;
    }
    EXPECT_GT(highest, 16000);
}

// The checksums, frequencies and samples below are of signals rendered sample by sample by a program written
// independently of this one. Those of the noises pin the random numbers too.

TEST(OutputRender, MixesAreExactFromBufferToBuffer) {
    RenderBench bench;
    const auto mix = [&bench](double lowest, double spacing, double sign, int waveforms, int buffers) {
        for (int i = 0; i < kGeneratorCount; ++i) {
            bench.set(static_cast<std::size_t>(i), {lowest + spacing * i, sign * (-350 + 50 * i),
                                                    1 - 0.05 * i, 0.2 + 0.05 * i, i % waveforms, 1});
        }
        return checksum(bench.render(buffers));
    };
    EXPECT_EQ(mix(100, 777.7, 1, 8, 1), 0xB02226BCU);
    EXPECT_EQ(mix(150, 1166.55, -1, 8, 1), 0x312BA418U) << "other phases between buffers";
    EXPECT_EQ(mix(22000, -3, 1, 4, 4), 0x09E01ABBU) << "the highest frequencies";
    bench.output.syncPhases();
    EXPECT_EQ(mix(11025, 0, 0, 8, 2), 0xD6D36B19U)
        << "together from phase 0, but triangles keep their direction";
}

TEST(OutputRender, VoicesShareFullScaleAndSumsThatDoNotFitWrapOrCountAsTheLowest) {
    const std::tuple<const char*, int, int, double, int> seconds[] = {
        {"disabled", 6, 0, 1.0, -32767},
        {"off, but it counts", 7, 1, 1.0, -16383},
        {"of no known waveform", 99, 2, 1.0, -16383},
        {"up to the sample that has no negative", 6, 1, 32770.0 / 32767.0, -32768},
        {"beyond 32 bits", 6, 1, 132000.0, 0},
        {"noise beyond 64 bits", 5, 1, 1e300, 16384},
    };
    for (const auto& [second, waveform, enabled, volume, sample] : seconds) {
        RenderBench bench;
        bench.set(0, {1, 0, 1, 1, 6, 1}); // a level for almost a second
        bench.set(1, {1, 0, volume, volume, waveform, enabled});
        EXPECT_EQ(bench.render()[0], sample) << second;
    }
    RenderBench bench;
    bench.set(0, {1, 360, 0.8, 0.8, 3, 1}); // its phase takes it far beyond full scale
    bench.set(1, {1, 0, 0, 0, 4, 1});
    bench.set(2, {1, 0, 1, 1, 6, 1}); // here the sum wraps, and is truncated from below from then on
    bench.set(3, {1, 0, 0.1, 0.1, 6, 1});
    EXPECT_EQ(bench.render()[0], 30312);
}

TEST(Sweep, EveryKindOfPassIsExact) {
    // Switches; start, end and rate; buffers; checksum; frequency, enabled and done at the end. Each goes on
    // where the one before has left the sweep.
    const std::tuple<std::string, double, double, double, int, std::uint32_t, double, int, int> rows[] = {
        {"downward, reverse", 9000, 300, 90000, 3, 0x46B1917F, 4791.83673469401, 1, 0},
        {"downward", 9000, 30, 90000, 4, 0x6C1CFB93, 8832.653061224453, 1, 0},
        {"linear", 20, 20000, 90000, 4, 0xAF86FD62, 9687.346938776713, 1, 0},
        {"log", 20, 20000, 90000, 12, 0xD6F1A8E3, 45.4082312956197, 1, 0},
        {"far up, once, left only, and given up", 1.5e6, 2.5e6, 2e6, 2, 0x5FF168FA, 1953514.7392284125, 1, 0},
        {"log, once, right only", 0.5, 20000, 90000, 8, 0x881EE710, 15985.10077695432, 0, 1},
        {"reverse, synchronised", 500, 3000, 90000, 7, 0x87EE692B, 1393.2640422578593, 1, 1},
        {"reverse, with an end below it", 500, 1000, 2000, 1, 0x6872EE2A, 1166.5973755912441, 1, 1},
        {"on the way back no longer so", 500, 5000, 90000, 1, 0x03B1976E, 1034.693877551018, 1, 1},
        {"downward, reverse again", 9000, 300, 90000, 2, 0x03BEED1C, 2565.3061224489697, 1, 1},
        {"reverse, once on the way back", 9000, 300, 90000, 1, 0x71C9A654, 1799.9999999989404, 0, 1},
        {"log, among voices", 20, 20000, 90000, 3, 0x3B48CB83, 328.2043921191282, 1, 1},
        {"far up, downward, reverse, once", 3e6, 2.9e6, 441000, 5, 0xC49FB65F, 2950040.0, 0, 1},
    };
    RenderBench bench;
    SweepParameters& sweep = bench.sweep;
    for (const auto& row : rows) {
        const auto& [pass, start, end, rate, buffers, expected, frequency, enabled, done] = row;
        const auto has = [&row](const char* word) {
            return std::get<0>(row).find(word) != std::string::npos;
        };
        for (std::size_t i = 0; i < 3; ++i)
            bench.set(i, {1000, 0, 1, 1, 0, has("voices")});
        bench.setSweep(start, end, rate);
        sweep.reverse = has("reverse");
        sweep.log = has("log");
        sweep.leftEnabled = !has("right only");
        sweep.rightEnabled = !has("left only");
        if (has("synchronised"))
            bench.output.syncPhases();
        if (has("once")) {
            sweep.enabled = 0;
            sweep.startOneShot();
        }
        EXPECT_EQ(checksum(bench.render(buffers)), expected) << pass;
        EXPECT_DOUBLE_EQ(sweep.currentFrequency, frequency) << pass;
        EXPECT_EQ(std::pair(sweep.enabled.load(), sweep.done.load()), std::pair(enabled, done)) << pass;
    }
    sweep.startOneShot();
    sweep.endPass(); // of the pass before, whose last frame is being made
    EXPECT_EQ(std::pair(sweep.enabled.load(), sweep.done.load()), std::pair(1, 0));
}

TEST(OutputRender, SurvivesWhateverItIsGivenAndRecoversAtOnce) {
    const double nasty[] = {0,     -1,     -22000, 44100,  44101,    66150,     1e6, 1e18,
                            1e300, -1e300, 1e308,  5e-324, HUGE_VAL, -HUGE_VAL, NAN};
    int switches = 0;
    for (const std::int32_t waveform : {-1, 4, 5, 7, 8, 0, 1, 2, 3, 6}) {
        RenderBench bench;
        SweepParameters& sweep = bench.sweep;
        for (const double bad : nasty) {
            for (const int fields : {1, 2, 4, 8, 31}) {
                const auto value = [&](int field, double sane) { return (fields & field) != 0 ? bad : sane; };
                // From 0, this phase and 44100 Hz take a position to where it rounds to twice the table's
                // length.
                bench.output.syncPhases();
                bench.set(0, {value(1, 1000), value(2, 359.99999999999994), value(8, 1), value(8, 1),
                              waveform, INT32_MAX});
                bench.setSweep(value(1, 20), value(2, 20000), value(4, 90000));
                sweep.amplitudeLeft = value(8, 1);
                sweep.reverse = switches & 1;
                sweep.log = switches & 2;
                sweep.oneShot = switches++ & 4;
                bench.render();

                bench.set(0, {441, 0, 1, 0, waveform, 1});
                bench.setSweep(441, 442, 1e9); // from anywhere plausible back to 441 Hz within a few frames
                sweep.amplitudeRight = 1;
                sweep.leftEnabled = sweep.reverse = sweep.log = sweep.oneShot = 0;
                bench.render(2);
                sweep.rate = 0;
                const auto samples = bench.render();
                SCOPED_TRACE(testing::Message() << waveform << " after " << bad << " in " << fields);
                expectTone(samples, 1);
                if ((waveform >= 0 && waveform < 4) || waveform == 6)
                    expectTone(samples, 0);
            }
        }
    }
}

} // namespace
} // namespace sonotrace
