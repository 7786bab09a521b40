#include "generator/SweepSynthesis.h"

#include "support/Checksum.h"
#include "support/RenderBench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace sonotrace {
namespace {

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
        {"linear, from where the program starts", 20, 20000, 90000, 0, 0, 0, 0, 4, 0x4138909A,
         854.6938775510173, 1, 0},
        {"linear, once", 20, 20000, 90000, 0, 0, 1, 0, 4, 0xFD41258C, 446.53061224489664, 0, 1},
        {"logarithmic", 20, 20000, 90000, 0, 1, 0, 0, 12, 0xDF0928F2, 1725.7937818996108, 1, 0},
        {"back and forth", 500, 3000, 9000, 1, 0, 0, 0, 8, 0x1A653638, 2837.9591836729596, 1, 0},
        {"downward", 9000, 30, 90000, 0, 0, 0, 0, 4, 0x8526DE4B, 4071.4285714275015, 1, 0},
        {"downward and back, once", 9000, 300, 90000, 1, 0, 1, 0, 10, 0x6AD309EA, 5995.918367346283, 0, 1},
        {"downward and back, from where the program starts", 9000, 300, 90000, 1, 0, 0, 0, 12, 0xFA2705FC,
         644.8979591836705, 1, 0},
        {"logarithmic among voices", 20, 20000, 90000, 0, 1, 0, 3, 4, 0x77EBD21E, 61.59464977538537, 1, 0},
    };
    for (const SweepCase& pass : cases) {
        RenderBench bench;
        for (int i = 0; i < pass.voices; ++i)
            bench.set(static_cast<std::size_t>(i), {1000, 0, 1, 1, 0, 1});
        SweepParameters& sweep = bench.sweep;
        sweep.startFrequency = pass.start;
        sweep.endFrequency = pass.end;
        sweep.rate = pass.rate;
        sweep.amplitudeLeft = 1.0;
        sweep.amplitudeRight = 0.5;
        sweep.leftEnabled = 1;
        sweep.rightEnabled = 1;
        sweep.reverse = pass.reverse;
        sweep.log = pass.log;
        if (pass.oneShot)
            sweep.startOneShot();
        else
            sweep.enabled = 1;
        EXPECT_EQ(checksum(bench.render(pass.buffers)), pass.checksum) << pass.name;
        EXPECT_DOUBLE_EQ(sweep.currentFrequency, pass.frequency) << pass.name;
        EXPECT_EQ(sweep.enabled, pass.enabled) << pass.name;
        EXPECT_EQ(sweep.done, pass.done) << pass.name;
        EXPECT_EQ(sweep.oneShot, 0) << pass.name;
    }
}

TEST(Sweep, AOneShotEndsOnTheFrameThatPassesTheEnd) {
    RenderBench bench;
    bench.sweep.startFrequency = 20;
    bench.sweep.endFrequency = 20000;
    bench.sweep.rate = 90000;
    bench.sweep.amplitudeLeft = 1;
    bench.sweep.leftEnabled = 1;
    bench.sweep.startOneShot();
    const auto samples = bench.render(3);
    const auto lastHeard =
        std::find_if(samples.rbegin(), samples.rend(), [](std::int16_t s) { return s != 0; });
    EXPECT_EQ(std::distance(lastHeard, samples.rend()) / 2, 9790); // the 9791st frame, counted from 0
    EXPECT_EQ(std::ranges::count_if(samples, [](std::int16_t s) { return s != 0; }) > 9000, true);
    for (std::size_t i = 1; i < samples.size(); i += 2)
        ASSERT_EQ(samples[i], 0); // the right channel is not enabled
}

TEST(Sweep, SurvivesWhateverIsTypedAndAGoodValueRecoversAtOnce) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nasty[] = {0, -5, 1e308, -1e308, 5e-324, inf, -inf, std::nan("")};
    RenderBench bench;
    SweepParameters& sweep = bench.sweep;
    sweep.leftEnabled = sweep.rightEnabled = 1;
    for (const int switches : {0, 1, 2, 3, 4, 5, 6, 7}) {
        for (const double value : nasty) {
            for (const int which : {0, 1, 2, 3, 4}) {
                sweep.enabled = 1;
                sweep.reverse = switches & 1;
                sweep.log = (switches & 2) / 2;
                sweep.oneShot = (switches & 4) / 4;
                sweep.startFrequency = which == 0 || which == 4 ? value : 20;
                sweep.endFrequency = which == 1 || which == 4 ? value : 20000;
                sweep.rate = which == 2 || which == 4 ? value : 90000;
                sweep.amplitudeLeft = sweep.amplitudeRight = which == 3 || which == 4 ? value : 1.0;
                bench.render();

                sweep.enabled = 1;
                sweep.oneShot = sweep.reverse = sweep.log = 0;
                sweep.startFrequency = 441;
                sweep.endFrequency = 442;
                sweep.rate = 1e9; // from anywhere plausible back to 441 Hz within a few frames
                sweep.amplitudeLeft = sweep.amplitudeRight = 1.0;
                bench.render();
                sweep.rate = 0;
                const auto samples = bench.render();
                ASSERT_GT(std::ranges::max(samples), 32700) << value << " as " << which << ", " << switches;
                for (std::size_t i = 0; i < samples.size() - 200; i += 2)
                    ASSERT_NEAR(samples[i], samples[i + 200], 200)
                        << value << " as " << which << ", " << switches;
            }
        }
    }
}

} // namespace
} // namespace sonotrace
