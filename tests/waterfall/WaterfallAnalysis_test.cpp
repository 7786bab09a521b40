#include "WaterfallFixture.h"

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

TEST(WaterfallAnalysis, ShowsASteadyToneInItsRowAtTheRightEdge) {
    Waterfall waterfall;
    waterfall.parameters.fftSizeLog2 = 13;
    waterfall.parameters.colorWaterfallPlot = 0;
    // Row y is bin y, seen from its middle.
    waterfall.parameters.waterfallStartFreq = 0.5 * 44100.0 / 8192.0;
    waterfall.parameters.waterfallEndFreq = 600.5 * 44100.0 / 8192.0;
    waterfall.image.setBounds(800.0, 600.0);
    waterfall.analysis.capture(tone(200, 8192, 1000.0, 11025));

    // 2 * 1000 * 8192 / 2 under the window's mean 0.5 is 4096000, 95.16 on the scale of 50 to 100.
    EXPECT_EQ(waterfall.pixel(1023 - 200, 799), 0xFFE6E6E6);
    for (const int neighbour : {199, 201}) // half of that
        EXPECT_EQ(waterfall.pixel(1023 - neighbour, 799), 0xFFD0D0D0);
    EXPECT_EQ(waterfall.pixel(1023 - 300, 799), 0xFF000000);
    EXPECT_EQ(waterfall.pixel(1023 - 600, 799), 0U) << "above the view";
    EXPECT_EQ(waterfall.pixel(1023 - 200, 798), 0U);
    EXPECT_EQ(waterfall.pixel(1023 - 200, 800), 0U);

    waterfall.analysis.capture(
        tone(0, 1, 0.0, 11025)); // the second line is partly silent, and moves the first
    EXPECT_EQ(waterfall.pixel(1023 - 200, 798), 0xFFE6E6E6);
}

TEST(WaterfallAnalysis, NeedsMoreThanAFrameOfSamplesForALine) {
    Waterfall waterfall;
    waterfall.parameters.waterfallFftLen = 64.0;
    waterfall.parameters.fftSizeLog2 = 6;
    showEveryBin(waterfall);
    for (const auto& [frames, lines] : {std::pair{64, 0U}, {1, 1U}, {63, 0U}, {1, 1U}, {6400, 100U}}) {
        waterfall.analysis.capture(scatteredFrames(frames));
        EXPECT_EQ(waterfall.loggedLines().size(), lines) << frames;
    }
}

struct GoldenLine {
    std::size_t line;
    double smallest, largest; // magnitudes of the bins shown
};

struct PassCase {
    const char* name;
    double length;              ///< in force at first
    std::int32_t requestedLog2; ///< taken up by the first line
    std::int32_t speedup;
    double startFreq, endFreq;
    std::size_t lines; ///< of 11025 frames
    std::vector<GoldenLine> golden;
};

// The numbers come from a separate double-precision model of the work areas, stale remainders included.
TEST(WaterfallAnalysis, DrawsTheLinesOfTheModel) {
    const PassCase cases[] = {
        PassCase{"one line a frame",
                 1024.0,
                 10,
                 1,
                 0.0,
                 22050.0,
                 10,
                 {{0, 1277.45082, 276946.209}, {1, 522.476809, 276892.865}, {9, 328.164614, 277444.484}}},
        PassCase{"three lines a frame, of which a sample is never used",
                 1024.0,
                 10,
                 3,
                 0.0,
                 22050.0,
                 30,
                 {{0, 25.1711871, 47804.5229},
                  {1, 98.5099679, 102291.209},
                  {2, 79.1383626, 125506.096},
                  {3, 92.5557279, 125137.23},
                  {4, 73.7182236, 125783.761},
                  {29, 84.721364, 125142.866}}},
        PassCase{"a shorter length between frames",
                 8192.0,
                 10,
                 1,
                 0.0,
                 22050.0,
                 3,
                 {{0, 35.8966077, 27224.8435}, {1, 219.444423, 277805.469}, {2, 328.164614, 277444.484}}},
        PassCase{"what is left behind a shorter frame",
                 8192.0,
                 10,
                 1,
                 22050.0,
                 44000.0,
                 3,
                 {{0, 10.5409961, 665.207194}, {2, 10.5409961, 665.207194}}},
        PassCase{"a shorter length inside a pass",
                 1024.0,
                 9,
                 3,
                 0.0,
                 22050.0,
                 60,
                 {{1, 35.1261483, 45184.2465},
                  {2, 192.808978, 86827.4126},
                  {3, 142.049904, 57663.7203},
                  {4, 77.9178584, 57775.9409},
                  {5, 190.322159, 81602.2726},
                  {59, 238.00193, 81140.7869}}},
        PassCase{"a longer length inside a pass",
                 64.0,
                 8,
                 5,
                 0.0,
                 22050.0,
                 215,
                 {{1, 95.7126111, 77153.6975},
                  {2, 8758.93589, 233599.214},
                  {5, 66.5383552, 11904.818},
                  {214, 318.404062, 43027.0256}}}};
    for (const PassCase& c : cases) {
        SCOPED_TRACE(c.name);
        Waterfall waterfall;
        waterfall.parameters.waterfallFftLen = c.length;
        waterfall.parameters.fftSizeLog2 = c.requestedLog2;
        waterfall.parameters.waterfallSpeedup = c.speedup;
        showEveryBin(waterfall, c.startFreq, c.endFreq);
        waterfall.analysis.capture(scatteredFrames(11025));
        const std::vector<LoggedLine> lines = waterfall.loggedLines();
        ASSERT_EQ(lines.size(), c.lines);
        for (const GoldenLine& golden : c.golden) {
            EXPECT_NEAR(lines[golden.line].minSum, golden.smallest, 1e-5 * golden.largest) << golden.line;
            EXPECT_NEAR(lines[golden.line].maxSum, golden.largest, 1e-5 * golden.largest) << golden.line;
        }
    }
}

TEST(WaterfallAnalysis, FillsTheColumnsThatAPassScrollsInFromLeftToRight) {
    Waterfall waterfall;
    waterfall.parameters.waterfallFftLen = 1024.0;
    waterfall.parameters.fftSizeLog2 = 10;
    waterfall.parameters.waterfallSpeedup = 3;
    showEveryBin(waterfall);
    waterfall.parameters.waterfallMinDB = 25.0F;
    waterfall.parameters.waterfallMaxDB = 75.0F;
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
        waterfall.parameters.waterfallFftLen = 1024.0;
        waterfall.parameters.fftSizeLog2 = 10;
        waterfall.parameters.waterfallSpeedup = speedup;
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

TEST(WaterfallAnalysis, TakesUpALongerTransformThatHasRoomForTheSpeedUp) {
    Waterfall waterfall;
    waterfall.parameters.waterfallFftLen = 64.0;
    waterfall.parameters.fftSizeLog2 = 10;
    waterfall.parameters.waterfallSpeedup = 100;
    showEveryBin(waterfall);
    waterfall.analysis.capture(scatteredFrames(1025));
    EXPECT_EQ(waterfall.loggedLines().size(), 100U);
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

} // namespace
} // namespace sonotrace
