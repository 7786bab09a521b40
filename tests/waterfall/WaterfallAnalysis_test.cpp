#include "WaterfallFixture.h"

#include "waterfall/WaterfallTransform.h"

#include <limits>

namespace sonotrace {
namespace {

/// Frames whose folded sample n is (7919 n mod 2001) - 1000.
std::vector<std::int16_t> scatteredFrames(int frames) {
    std::vector<std::int16_t> samples;
    for (int n = 0; n < frames; ++n) {
        samples.push_back(static_cast<std::int16_t>(std::int64_t{n} * 7919 % 2001 - 1000 + 300));
        samples.push_back(-300);
    }
    return samples;
}

/// Lets every bin up to the end frequency be a row or two of the view, so that a line's log tells its
/// extremes.
void showEveryBin(Waterfall& waterfall, double startFreq = 0.0, double endFreq = 22050.0) {
    waterfall.parameters.waterfallStartFreq = startFreq;
    waterfall.parameters.waterfallEndFreq = endFreq;
    waterfall.image.setBounds(800.0, 1000.0);
}

TEST(WaterfallAnalysis, FoldsChannelsWithWrapAround) {
    SampleRing ring;
    const std::vector<std::int16_t> frames = {20000, 20000, -32768, -1, 5, -7};
    ring.fold(frames);
    EXPECT_EQ(ring.available(), 3);
    for (const int expected : {-25536, 32767, -2})
        EXPECT_EQ(ring.next(), expected);
    ring.fold(std::vector<std::int16_t>(2 * (SampleRing::kSamples - 1), 9)); // over the ring's end
    EXPECT_EQ(ring.available(), SampleRing::kSamples - 1);
    ring.dropWaiting();
    EXPECT_EQ(ring.available(), 0);
}

TEST(WaterfallAnalysis, NeedsMoreThanAFrameOfSamplesForALine) {
    Waterfall waterfall;
    waterfall.setFrames(64, 6, 1);
    showEveryBin(waterfall);
    for (const auto& [frames, lines] : {std::pair{64, 0U}, {1, 1U}, {63, 0U}, {1, 1U}, {6400, 100U}}) {
        waterfall.analysis.capture(scatteredFrames(frames));
        EXPECT_EQ(waterfall.loggedLines().size(), lines) << frames;
    }
}

struct Pass {
    double length;              ///< in force at first
    std::int32_t requestedLog2; ///< taken up by the first line
    std::int32_t speedup;
    double startFreq, endFreq;
};

struct GoldenLine {
    std::size_t line;
    double smallest, largest; ///< magnitudes of the bins shown
};

void expectLines(const char* what, const Pass& pass, std::size_t count,
                 const std::vector<GoldenLine>& expected) {
    SCOPED_TRACE(what);
    Waterfall waterfall;
    waterfall.setFrames(pass.length, pass.requestedLog2, pass.speedup);
    showEveryBin(waterfall, pass.startFreq, pass.endFreq);
    waterfall.analysis.capture(scatteredFrames(11025));
    const std::vector<LoggedLine> lines = waterfall.loggedLines();
    ASSERT_EQ(lines.size(), count);
    for (const GoldenLine& golden : expected) {
        EXPECT_NEAR(lines[golden.line].minSum, golden.smallest, 1e-5 * golden.largest) << golden.line;
        EXPECT_NEAR(lines[golden.line].maxSum, golden.largest, 1e-5 * golden.largest) << golden.line;
    }
}

// The numbers come from a separate double-precision model of the work areas, stale remainders included.
TEST(WaterfallAnalysis, DrawsTheLinesOfTheModel) {
    expectLines("one line a frame", {1024, 10, 1, 0, 22050}, 10,
                {{0, 1277.451, 276946.21}, {1, 522.477, 276892.86}, {9, 328.165, 277444.48}});
    expectLines(
        "three lines a frame, of which a sample is never used", {1024, 10, 3, 0, 22050}, 30,
        {{0, 25.171, 47804.52}, {2, 79.138, 125506.10}, {4, 73.718, 125783.76}, {29, 84.721, 125142.87}});
    expectLines("a shorter length between frames", {8192, 10, 1, 0, 22050}, 3,
                {{0, 35.897, 27224.84}, {1, 219.444, 277805.47}, {2, 328.165, 277444.48}});
    expectLines("what is left behind a shorter frame", {8192, 10, 1, 22050, 44000}, 3,
                {{0, 10.541, 665.207}, {2, 10.541, 665.207}});
    expectLines(
        "a shorter length inside a pass", {1024, 9, 3, 0, 22050}, 60,
        {{1, 35.126, 45184.25}, {3, 142.050, 57663.72}, {5, 190.322, 81602.27}, {59, 238.002, 81140.79}});
    expectLines(
        "a longer length inside a pass", {64, 8, 5, 0, 22050}, 215,
        {{1, 95.713, 77153.70}, {2, 8758.936, 233599.21}, {5, 66.538, 11904.82}, {214, 318.404, 43027.03}});
    expectLines("a longer length, which alone has room for the speed-up", {64, 10, 100, 0, 22050}, 1100, {});
}

TEST(WaterfallAnalysis, TakesUpANewDataWindowWithTheNextLine) {
    Waterfall changed;
    Waterfall steady;
    steady.parameters.waterfallWindowType = 6;
    for (Waterfall* waterfall : {&changed, &steady}) {
        waterfall->setFrames(1024, 10, 1);
        showEveryBin(*waterfall);
        waterfall->analysis.capture(scatteredFrames(1025));
        waterfall->parameters.waterfallWindowType = 6;
        waterfall->analysis.capture(scatteredFrames(1024));
    }
    const auto lines = changed.loggedLines();
    const auto expected = steady.loggedLines();
    EXPECT_NE(lines[0].maxSum, expected[0].maxSum);
    EXPECT_EQ(lines[1].maxSum, expected[1].maxSum);
}

TEST(WaterfallAnalysis, FillsTheColumnsThatAPassScrollsInFromLeftToRight) {
    Waterfall waterfall;
    waterfall.setFrames(1024.0, 10, 3);
    showEveryBin(waterfall);
    waterfall.setLimits(25.0F, 75.0F);
    waterfall.parameters.colorWaterfallPlot = 0;
    // Row 0 is bin 5, whose magnitudes in the model are 1484.5, 4512.3 and 6412.8.
    waterfall.parameters.waterfallStartFreq = 5.5 * 44100.0 / 1024.0;
    waterfall.analysis.capture(scatteredFrames(1025)); // one pass
    for (const auto& [column, word] :
         {std::pair{796, 0U}, {797, 0xFF696969U}, {798, 0xFF8C8C8CU}, {799, 0xFF979797U}, {800, 0U}})
        EXPECT_EQ(waterfall.pixel(1023, column), word) << column;
}

TEST(WaterfallAnalysis, DropsWhatIsCapturedWhilePausedAndGoesOnFresh) {
    for (const std::int32_t speedup :
         {0, -1, std::numeric_limits<std::int32_t>::min(), 1025, std::numeric_limits<std::int32_t>::max()}) {
        SCOPED_TRACE(speedup);
        Waterfall waterfall;
        waterfall.setFrames(1024.0, 10, speedup);
        showEveryBin(waterfall);
        for (const int frames : {11025, 11025, 500}) // the last is less than a frame
            waterfall.analysis.capture(tone(1, 4, 9000.0, frames));
        EXPECT_TRUE(waterfall.loggedLines().empty());

        waterfall.parameters.waterfallSpeedup = 1;
        waterfall.analysis.capture(scatteredFrames(1025));
        const std::vector<LoggedLine> lines = waterfall.loggedLines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_NEAR(lines[0].maxSum, 276946.209, 3.0);
    }
}

TEST(WaterfallAnalysis, TakesNothingInWhileInterrupted) {
    Waterfall waterfall;
    showEveryBin(waterfall);
    waterfall.analysis.interrupt();
    waterfall.analysis.capture(scatteredFrames(11025));
    EXPECT_TRUE(waterfall.loggedLines().empty());
    waterfall.analysis.resume();
    waterfall.analysis.capture(scatteredFrames(11025));
    EXPECT_FALSE(waterfall.loggedLines().empty());
}

TEST(WaterfallTransform, TakesUpTheRequestedLengthWithinTheMenusRange) {
    WaterfallParameters parameters;
    DeferredLog log;
    WaterfallTransform transform(parameters, log);
    AlignedFloats frame(kLargestFrameLength);
    for (const auto& [requested, length] : {std::pair{13, 8192}, {30, 131072}, {-2000000000, 64}}) {
        parameters.fftSizeLog2 = requested;
        EXPECT_EQ(transform.transform(frame), length) << requested;
        EXPECT_EQ(parameters.waterfallFftLen, length) << requested;
    }
}

TEST(WaterfallAnalysis, LeavesItsLogToTheWindowThreadInOrder) {
    Waterfall waterfall;
    waterfall.setFrames(64, 7, 1);
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

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();

/// What the controls may hold; sane unless a case says otherwise. Row y of the view is bin y.
struct Values {
    const char* name = "sane";
    double startFreq = 0.5 * 44100.0 / 1024.0;
    double endFreq = 100.5 * 44100.0 / 1024.0;
    float minDB = 50.0F;
    float maxDB = 100.0F;
    double length = 1024.0;
    std::int32_t requestedLog2 = 10;
    std::int32_t speedup = 1;
    std::int32_t windowType = 1;
    double width = 800.0;
    double height = 100.0;

    void applyTo(Waterfall& waterfall) const {
        waterfall.parameters.waterfallStartFreq = startFreq;
        waterfall.parameters.waterfallEndFreq = endFreq;
        waterfall.setLimits(minDB, maxDB);
        waterfall.setFrames(length, requestedLog2, speedup);
        waterfall.parameters.waterfallWindowType = windowType;
        waterfall.parameters.colorWaterfallPlot = 0;
        waterfall.image.setBounds(width, height);
    }
};

TEST(HostileValues, LeaveTheWaterfallAsItWasWhenTheyAreGone) {
    const auto nan = static_cast<float>(kNotANumber);
    const Values cases[] = {
        {.name = "negative frequencies", .startFreq = -1e6, .endFreq = -5.0},
        {.name = "huge frequencies", .startFreq = -1e300, .endFreq = 1e300},
        {.name = "infinite frequencies", .startFreq = kInfinity, .endFreq = -kInfinity},
        {.name = "frequencies that are no numbers", .startFreq = kNotANumber, .endFreq = kNotANumber},
        {.name = "frequencies above all bins", .startFreq = 1e7, .endFreq = 1e12},
        {.name = "falling frequencies", .startFreq = 20000.0, .endFreq = 100.0},
        {.name = "no dB range", .minDB = 70.0F, .maxDB = 70.0F},
        {.name = "huge dB limits", .minDB = -3e38F, .maxDB = 3e38F},
        {.name = "dB limits that are no numbers", .minDB = nan, .maxDB = nan},
        {.name = "no length", .length = 0.0},
        {.name = "a length that is no number", .length = kNotANumber, .requestedLog2 = -5, .speedup = 7},
        {.name = "huge lengths", .length = 1e300, .requestedLog2 = 30, .speedup = 3},
        {.name = "negative lengths", .length = -1e300, .requestedLog2 = kSmallest, .speedup = 2},
        {.name = "as many lines as samples", .length = 64.0, .requestedLog2 = 6, .speedup = 64},
        {.name = "one line too many", .length = 64.0, .requestedLog2 = 6, .speedup = 65},
        {.name = "a huge speed-up", .speedup = kLargest},
        {.name = "no such window", .windowType = -42},
        {.name = "a huge view", .width = 1e300, .height = 1e300},
        {.name = "a view that is no number", .width = kNotANumber, .height = kNotANumber},
        {.name = "a sliver of a view", .width = -5.0, .height = 0.25},
    };
    const std::vector<std::int16_t> sound = tone(40, 1024, 1000.0, 11025);
    for (const Values& hostile : cases) {
        SCOPED_TRACE(hostile.name);
        Waterfall waterfall;
        // The pause forgets what the hostile values have left of a frame.
        for (const Values& values : {Values{}, hostile, Values{.speedup = 0}, Values{}}) {
            values.applyTo(waterfall);
            waterfall.analysis.capture(sound);
        }
        // 1000 * 1024 / 2 is 512000, 82.16 on the scale; half of it beside.
        EXPECT_EQ(waterfall.pixel(1023 - 40, 799), 0xFFA4A4A4);
        EXPECT_EQ(waterfall.pixel(1023 - 41, 799), 0xFF8D8D8D);
        EXPECT_EQ(waterfall.pixel(1023 - 60, 799), 0xFF000000);
    }
}

TEST(HostileValues, MakeABufferTakeItsTimeButNotMore) {
    constexpr std::int32_t kLength = 8192;
    const std::vector<std::int16_t> sound = tone(40, 1024, 1000.0, 11025);
    const auto paintedColumns = [](const Waterfall& waterfall) {
        return std::pair(waterfall.pixel(1023 - 40, 0) != 0, waterfall.pixel(1023 - 40, 799) != 0);
    };
    Waterfall waterfall;
    // 4096 lines of 8192 samples are the work of two buffers. The view holds the last 800 of them.
    const Values laborious{.endFreq = 4400.0, .length = kLength, .requestedLog2 = 13, .speedup = kLength / 2};
    laborious.applyTo(waterfall);
    waterfall.analysis.capture(sound);
    EXPECT_EQ(paintedColumns(waterfall), std::pair(false, false));
    waterfall.analysis.capture(sound);
    EXPECT_EQ(paintedColumns(waterfall), std::pair(true, true));

    // One that nobody wants any more is not waited for.
    Waterfall corrected;
    laborious.applyTo(corrected);
    corrected.analysis.capture(sound);
    corrected.loggedLines();
    Values{}.applyTo(corrected);
    corrected.analysis.capture(sound);
    EXPECT_EQ(corrected.loggedLines().size(), 10U);
}

} // namespace
} // namespace sonotrace
