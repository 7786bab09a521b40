#include "WaterfallFixture.h"

#include "waterfall/SlowColumn.h"
#include "waterfall/WaterfallFindings.h"
#include "waterfall/WaterfallTransform.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace sonotrace {
namespace {

using namespace std::chrono_literals;

/// Frames whose folded sample n is (7919 n mod 2001) - 1000, a negative one by a sum that wraps around.
std::vector<std::int16_t> scatteredFrames(int frames) {
    std::vector<std::int16_t> samples;
    for (int n = 0; n < frames; ++n) {
        const auto sum = static_cast<int>(std::int64_t{n} * 7919 % 2001 - 1000);
        samples.push_back(sum < -1 ? 32767 : -300);
        samples.push_back(static_cast<std::int16_t>(sum - samples.back()));
    }
    return samples;
}

struct GoldenLine {
    std::size_t line;
    double smallest, largest; ///< magnitudes of the bins shown
};

void expectLines(const char* what, Waterfall&& waterfall, std::size_t count,
                 const std::vector<GoldenLine>& expected) {
    SCOPED_TRACE(what);
    waterfall.analysis.capture(scatteredFrames(11025));
    const std::vector<LoggedLine> lines = waterfall.loggedLines();
    ASSERT_EQ(lines.size(), count);
    for (const GoldenLine& golden : expected) {
        EXPECT_NEAR(lines[golden.line].smallest, golden.smallest, 1e-5 * golden.largest) << golden.line;
        EXPECT_NEAR(lines[golden.line].largest, golden.largest, 1e-5 * golden.largest) << golden.line;
    }
}

// The numbers come from a separate double-precision model of the work areas, stale remainders included.
TEST(WaterfallAnalysis, DrawsTheLinesOfTheModel) {
    expectLines("one line a frame", Waterfall(1024, 10, 1), 10,
                {{0, 1277.451, 276946.21}, {1, 522.477, 276892.86}, {9, 328.165, 277444.48}});
    expectLines(
        "three lines a frame, of which a sample is never used", Waterfall(1024, 10, 3), 30,
        {{0, 25.171, 47804.52}, {2, 79.138, 125506.10}, {4, 73.718, 125783.76}, {29, 84.721, 125142.87}});
    expectLines("a shorter length between frames", Waterfall(8192, 10, 1), 3,
                {{0, 35.897, 27224.84}, {1, 219.444, 277805.47}, {2, 328.165, 277444.48}});
    expectLines(
        "a shorter length inside a pass", Waterfall(1024, 9, 3), 60,
        {{1, 35.126, 45184.25}, {3, 142.050, 57663.72}, {5, 190.322, 81602.27}, {59, 238.002, 81140.79}});
    expectLines(
        "a longer length inside a pass", Waterfall(64, 8, 5), 215,
        {{1, 95.713, 77153.70}, {2, 8758.936, 233599.21}, {5, 66.538, 11904.82}, {214, 318.404, 43027.03}});
    expectLines("a longer length, which alone has room for the speed-up", Waterfall(64, 10, 100), 1100, {});
    expectLines("what is left behind a shorter frame", Waterfall(8192, 10, 1, 22050, 44000), 3,
                {{0, 10.541, 665.207}, {2, 10.541, 665.207}});
    expectLines("one row of all bins and others above them", Waterfall(64, 6, 1, 0, 1e12), 172,
                {{0, 0, 1997.202}});
}

TEST(WaterfallAnalysis, FillsTheColumnsThatAPassScrollsInFromLeftToRight) {
    Waterfall waterfall(1024, 10, 3);
    waterfall.setLimits(25.0F, 75.0F);
    // Row 0 is bin 5, whose magnitudes in the model are 1484.5, 4512.3 and 6412.8.
    waterfall.setFrequencies(5.5 * 44100.0 / 1024.0, 22050.0);
    for (const int frames : {1025, 1024}) // two passes
        waterfall.analysis.capture(scatteredFrames(frames));
    for (const auto& [column, word] :
         {std::pair{793, 0U}, {794, 0xFF696969U}, {795, 0xFF8C8C8CU}, {796, 0xFF979797U}, {800, 0U}})
        EXPECT_EQ(waterfall.pixel(1023, column), word) << column;
}

TEST(SampleRing, FoldsTheChannelsAsChosen) {
    SampleRing ring;
    for (const auto& [channel, sample] : {std::pair{ChannelFold::Sum, -25535},
                                          {ChannelFold::Left, 20000},
                                          {ChannelFold::Right, 20001},
                                          {ChannelFold::Difference, -1},
                                          {static_cast<ChannelFold>(99), -25535}}) {
        ring.fold(std::array<std::int16_t, 2>{20000, 20001}, channel);
        std::int16_t taken = 0;
        ring.take(1,
                  [&taken](std::size_t, std::span<const std::int16_t> samples) { taken = samples.front(); });
        EXPECT_EQ(taken, sample) << static_cast<int>(channel);
    }
}

TEST(SlowColumn, IsThePeakOrThePowerMeanOfItsLines) {
    for (const auto& [merge, first, second] :
         {std::tuple{LineMerge::Peak, 4.0, 1.0}, {LineMerge::PowerMean, std::sqrt(12.5), std::sqrt(0.5)}}) {
        SlowColumn column;
        EXPECT_FALSE(column.add(std::vector{81.0F}, 50, 100.0, merge)) << "of another length: forgotten";
        EXPECT_FALSE(column.add(std::vector{9.0F, 1.0F}, 50, 100.0, merge));
        EXPECT_TRUE(column.add(std::vector{16.0F, 0.0F}, 70, 100.0, merge));
        EXPECT_DOUBLE_EQ(column.magnitudes(2)[0], first);
        EXPECT_DOUBLE_EQ(column.magnitudes(2)[1], second);
        EXPECT_TRUE(column.add(std::vector{4.0F, 4.0F}, 80, 100.0, merge)) << "20 were left over";
        EXPECT_DOUBLE_EQ(column.magnitudes(2)[0], 2.0);
    }
}

TEST(WaterfallAnalysis, PaintsSlowColumnsAtTheirTimeWhateverTheLinesTake) {
    const struct {
        double seconds;
        int log2, speedup;
        std::size_t columns;
        double samplesPerColumn;
    } cases[] = {{0.1, 10, 1, 99, 4410}, {0.1, 10, 3, 99, 4410},   {1e-300, 10, 1, 99, 4410},
                 {0.1, 13, 1, 53, 8192}, {0.25, 10, 1, 39, 11025}, {1e300, 10, 1, 0, 0},
                 {-1, 10, 1, 430, 1024}, {kInfinity, 10, 1, 0, 0}, {kNan, 10, 3, 1293, 341}};
    for (const auto& tried : cases) {
        Waterfall waterfall(1 << tried.log2, tried.log2, tried.speedup);
        waterfall.parameters.slowSeconds = tried.seconds;
        waterfall.analysis.capture(scatteredFrames(441000));
        EXPECT_EQ(waterfall.loggedLines().size(), tried.columns) << &tried - cases;
        EXPECT_EQ(waterfall.image.samplesPerColumn(), tried.samplesPerColumn) << &tried - cases;
    }
}

TEST(WaterfallAnalysis, DropsWhatIsCapturedWhilePausedAndGoesOnFresh) {
    Waterfall fresh;
    EXPECT_FALSE(fresh.analysis.capture(scatteredFrames(1024))) << "a line needs more than its samples";
    EXPECT_TRUE(fresh.analysis.capture(scatteredFrames(1)));
    const std::vector<LoggedLine> line = fresh.loggedLines();
    for (const std::int32_t speedup : {0, -1, 1, 1025, std::numeric_limits<std::int32_t>::max()}) {
        Waterfall waterfall(1024, 10, speedup);
        waterfall.parameters.paused = speedup == 1;
        for (const int frames : {11025, 500}) // less than a frame, too
            EXPECT_FALSE(waterfall.analysis.capture(scatteredFrames(frames))) << speedup;
        waterfall.set();
        waterfall.analysis.capture(scatteredFrames(1025));
        EXPECT_EQ(waterfall.loggedLines(), line) << speedup;
    }
}

/// Begins a pass of 512 lines at a time when the clock moves on with each reading.
void beginAPass(Waterfall& waterfall, std::chrono::milliseconds perReading) {
    waterfall.set(1024, 10, 512);
    waterfall.clockIsRead = [&now = waterfall.now, perReading] { now += perReading; };
    EXPECT_TRUE(waterfall.analysis.capture(scatteredFrames(1025)));
}

TEST(WaterfallAnalysis, EndsAPassThatTakesLongerThanABufferAsItBegan) {
    Waterfall slow;
    beginAPass(slow, 20ms);
    std::vector<LoggedLine> lines = slow.loggedLines();
    EXPECT_EQ(lines.size(), 9U) << "of 220 ms, 40 are spent on the way to the first";
    Waterfall fast;
    beginAPass(fast, 0ms);
    for (Waterfall* waterfall : {&slow, &fast}) {
        waterfall->clockIsRead = [] {};
        waterfall->parameters.waterfallSpeedup = 3;
        EXPECT_TRUE(waterfall->analysis.capture(scatteredFrames(1024)));
    }
    std::ranges::copy(slow.loggedLines(), std::back_inserter(lines));
    EXPECT_EQ(lines.size(), 512U + 3U);
    EXPECT_EQ(lines, fast.loggedLines());
}

TEST(WaterfallAnalysis, CountsWhatFindsNoRoomAndThenGivesUpAPassThatIsNotWantedAnyMore) {
    Waterfall behind;
    beginAPass(behind, 100ms); // a line of two samples with each buffer
    for (int buffer = 1; buffer <= 47; ++buffer) {
        EXPECT_EQ(behind.analysis.droppedSamples(), std::max(0, buffer - 46) * 11025) << buffer;
        behind.analysis.capture(scatteredFrames(11025));
    }
    EXPECT_EQ(behind.loggedLines().size(), 48U);

    behind.clockIsRead = [] {};
    behind.set();
    Waterfall fresh;
    for (Waterfall* waterfall : {&behind, &fresh}) {
        waterfall->parameters.waterfallWindowType = 6; // which is taken up at once
        waterfall->analysis.capture(scatteredFrames(11025));
    }
    EXPECT_EQ(behind.loggedLines(), fresh.loggedLines());
    EXPECT_EQ(behind.analysis.droppedSamples(), 1025 + 47 * 11025 - 48 * 2);
}

TEST(WaterfallAnalysis, GivesUpAPassThatIsInterruptedAndTakesNothingInMeanwhile) {
    Waterfall waterfall;
    beginAPass(waterfall, 20ms);
    waterfall.analysis.interrupt(); // between two buffers
    waterfall.analysis.resume();
    int readings = 0;
    waterfall.clockIsRead = [&readings, &waterfall] {
        if (++readings == 10) // and between two lines
            waterfall.analysis.interrupt();
    };
    waterfall.analysis.capture(scatteredFrames(1025));
    EXPECT_EQ(waterfall.loggedLines().size(), 9U + 8U);
    EXPECT_FALSE(waterfall.analysis.capture(scatteredFrames(11025)));
    waterfall.analysis.resume();
    waterfall.analysis.capture(scatteredFrames(1025));
    EXPECT_EQ(waterfall.loggedLines().size(), 512U);
}

TEST(WaterfallAnalysis, LeavesItsLogToTheWindowThreadInOrder) {
    Waterfall waterfall(64, 7);
    waterfall.image.setBounds(0.0, 0.0);
    testing::internal::CaptureStderr();
    waterfall.analysis.capture(scatteredFrames(65 + 128));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    waterfall.log.write();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "BuildNewWindowCoeffs 1 N=64\n"
                                                      "log2SampleLength=0  waterfallFftLen=64\n"
                                                      "setting log2SampleLength=7  waterfallFftLen=128\n"
                                                      "BufferMemory malloc: 128\n"
                                                      "vDSP_create_fftsetup  7\n"
                                                      "minSum:1e+07  maxSum:0  minV:999  maxV:0\n"
                                                      "BuildNewWindowCoeffs 1 N=128\n"
                                                      "minSum:1e+07  maxSum:0  minV:999  maxV:0\n");
}

TEST(WaterfallFindings, SayWhatAUserMayNotExpect) {
    const struct {
        int speedup, log2;
        double start, end;
        float floor, ceiling;
        bool paused, levels, limits, old;
    } cases[] = {{1, 6, 0, 22050, 50, 100, false, false, false, false},
                 {0, 6, 0, 22050, 50, 50, true, true, false, false},
                 {65, 6, 700, 700, 50, 100, true, false, true, false},
                 {65, 7, 0, 22051, 50, 100, false, false, false, true}, // the length asked for is taken up
                 {-1, 99, 30000, 0, 50, 100, true, false, false, true}};
    for (const auto& tried : cases) {
        WaterfallParameters parameters{.waterfallFftLen = 64,
                                       .fftSizeLog2 = tried.log2,
                                       .waterfallSpeedup = tried.speedup,
                                       .waterfallMinDB = tried.floor,
                                       .waterfallMaxDB = tried.ceiling,
                                       .waterfallStartFreq = tried.start,
                                       .waterfallEndFreq = tried.end};
        const WaterfallFindings findings = findingsOf(parameters);
        const auto row = &tried - cases;
        EXPECT_EQ(findings.isPaused, tried.paused) << row;
        EXPECT_EQ(findings.hasEqualLevels, tried.levels) << row;
        EXPECT_EQ(findings.hasEqualLimits, tried.limits) << row;
        EXPECT_EQ(findings.showsOldRows, tried.old) << row;
    }
}

TEST(HostileValues, LeaveTheWaterfallAsItWasWhenTheyAreGone) {
    const std::pair<const char*, void (*)(Waterfall&)> cases[] = {
        {"infinite frequencies", [](Waterfall& w) { w.setFrequencies(kInfinity, -kInfinity); }},
        {"frequencies that are no numbers", [](Waterfall& w) { w.setFrequencies(kNan, kNan); }},
        {"frequencies above all bins", [](Waterfall& w) { w.setFrequencies(1e7, 1e12); }},
        {"falling frequencies", [](Waterfall& w) { w.setFrequencies(20000.0, 100.0); }},
        {"dB limits that are no numbers", [](Waterfall& w) { w.setLimits(NAN, NAN); }},
        {"a length that is no number", [](Waterfall& w) { w.set(kNan, -5, 7); }},
        {"huge lengths", [](Waterfall& w) { w.set(1e300, 30, 3); }},
        {"as many lines as samples", [](Waterfall& w) { w.set(64.0, 6, 64); }},
        {"one line too many", [](Waterfall& w) { w.set(64.0, 6, 65); }},
        {"no such window", [](Waterfall& w) { w.parameters.waterfallWindowType = -42; }},
        {"no such channel", [](Waterfall& w) { w.parameters.channel = static_cast<ChannelFold>(-7); }},
        {"slow columns of no number", [](Waterfall& w) { w.parameters.slowSeconds = kNan; }},
        {"a huge view", [](Waterfall& w) { w.image.setBounds(1e300, 1e300); }},
        {"a view that is no number", [](Waterfall& w) { w.image.setBounds(kNan, kNan); }},
        {"a sliver of a view", [](Waterfall& w) { w.image.setBounds(-5.0, 0.25); }},
    };
    const std::vector<std::int16_t> sound = tone(40, 1024, 1000.0, 11025);
    for (const auto& [name, spoil] : cases) {
        SCOPED_TRACE(name);
        Waterfall waterfall;
        waterfall.analysis.capture(sound);
        spoil(waterfall);
        waterfall.analysis.capture(sound);
        waterfall.set(1024, 10, 0); // the pause forgets what the hostile values have left of a frame
        waterfall.analysis.capture(sound);
        waterfall.set();
        waterfall.analysis.capture(sound);
        // 1000 * 1024 / 2 is 512000, 82.16 on the scale; half of it beside.
        for (const auto& [bin, word] : {std::pair{40, 0xFFA4A4A4U}, {41, 0xFF8D8D8DU}, {60, 0xFF000000U}})
            EXPECT_EQ(waterfall.pixel(1022 - bin * 2000 / 1024, 799), word) << bin;
    }
}

} // namespace
} // namespace sonotrace
