#include "WaterfallFixture.h"

#include "waterfall/ColorMap.h"
#include "waterfall/LevelScale.h"
#include "waterfall/ShownPicture.h"
#include "waterfall/WaterfallMeasurement.h"
#include "waterfall/WaterfallReadout.h"

#include <cstring>
#include <random>
#include <span>
#include <thread>

namespace sonotrace {
namespace {

/// Draws a line into plain memory, whose rows are moved pixel by pixel, as the waterfall was told to.
void drawPlainly(std::vector<std::uint32_t>& pixels, const Waterfall& waterfall,
                 const std::vector<double>& magnitudes, std::int32_t len, std::int32_t offset,
                 std::int32_t scroll) {
    const LevelScale scale(50.0F, 100.0F);
    const auto [width, height] = waterfall.image.bounds();
    const double start = waterfall.parameters.waterfallStartFreq;
    const double rowStep = (waterfall.parameters.waterfallEndFreq - start) / static_cast<double>(height);
    const auto column = static_cast<std::int32_t>(width - static_cast<float>(offset));
    for (std::int32_t y = 0; static_cast<float>(y) < height; ++y) {
        const auto lo = static_cast<std::size_t>((start + y * rowStep) / (44100.0 / len));
        const auto hi = static_cast<std::size_t>((start + (y + 1) * rowStep) / (44100.0 / len));
        const std::size_t bins = hi < lo + 2 ? 1 : hi - lo;
        double sum = 0.0;
        for (std::size_t bin = lo; bin < lo + bins; ++bin)
            sum += magnitudes[bin];
        std::uint32_t* const row = pixels.data() + std::ptrdiff_t{1023 - y} * 1536;
        if (scroll > 0 && scroll < 1536)
            std::memmove(row, row + scroll, static_cast<std::size_t>(6144 - 4 * scroll));
        const std::int32_t step = scale.step(sum / static_cast<double>(bins));
        if (column >= 0 && column < 1536)
            row[column] = 0xFF000000U + 0x010101U * static_cast<std::uint32_t>(step);
    }
}

/// Whether the pieces make up what a copy of the view's part of a grey picture is, on black.
bool showsTheView(ShownPicture& shown, const WaterfallImage& image, std::int32_t width, std::int32_t height) {
    std::vector<std::uint32_t> copy(static_cast<std::size_t>(width * height));
    image.copyRows(1024 - height, height, width, reinterpret_cast<std::uint8_t*>(copy.data()), 4 * width);
    for (std::uint32_t& word : copy)
        word |= 0xFF000000U;
    std::vector<std::uint32_t> view(copy.size());
    for (const ShownPicture::Piece& piece : shown.update(image.bitmap(), width, height))
        for (std::int32_t y = 0; y < piece.height; ++y)
            std::copy_n(shown.words() + (piece.copyY + y) * ShownPicture::kStride + piece.copyX, piece.width,
                        view.begin() + (piece.y + y) * width + piece.x);
    return view == copy;
}

TEST(WaterfallImage, IsAfterAnyLinesTheOneWhoseRowsWereMovedAndIsShownSo) {
    std::mt19937 random(11);
    const auto pick = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    Waterfall waterfall;
    ShownPicture shown;
    std::vector<std::uint32_t> plain(1536 * 1024);
    std::vector<double> magnitudes(8192);
    for (int count = 0; count < 250; ++count) {
        for (double& magnitude : magnitudes)
            magnitude = std::exp(pick(0, 20000) / 1000.0);
        if (count % 9 == 0)
            waterfall.image.setBounds(pick(2, 3070) / 2.0, pick(2, 2046) / 2.0);
        waterfall.setFrequencies(pick(0, 9000), pick(9000, 22050));
        const int len = 64 << pick(0, 7);
        const int offset = pick(-20, 40);
        const int scroll = pick(0, 3) > 0 ? pick(-1, 3) : pick(0, 3) > 0 ? pick(-2000, 2000) : 1536;
        waterfall.image.drawFFTLine(magnitudes, len, offset, scroll);
        drawPlainly(plain, waterfall, magnitudes, len, offset, scroll);
        const auto [width, height] = waterfall.image.bounds();
        if (count % 7 == 0) {
            ASSERT_TRUE(
                showsTheView(shown, waterfall.image, static_cast<int>(width), static_cast<int>(height)));
        }
    }
    std::vector<std::uint32_t> whole(plain.size());
    waterfall.image.copyRows(0, 1024, 1536, reinterpret_cast<std::uint8_t*>(whole.data()), 6144);
    EXPECT_TRUE(whole == plain);

    // The bottom-left corner, row by row, within lines that are longer than it; nothing else is written.
    std::vector<std::uint32_t> corner(std::size_t{100} * 37, 0x12345678U);
    waterfall.image.copyRows(1024 - 37, 37, 77, reinterpret_cast<std::uint8_t*>(corner.data()), 400);
    for (std::size_t i = 0; i < corner.size(); ++i)
        ASSERT_EQ(corner[i], i % 100 < 77 ? whole[(1024 - 37 + i / 100) * 1536 + i % 100] : 0x12345678U);
}

TEST(WaterfallImage, LogsTheExtremesOfEachLineAndOfLinesThatFoundNoView) {
    Waterfall waterfall;
    waterfall.parameters.colorWaterfallPlot = 1;
    waterfall.setLimits(25.0F, 75.0F);
    waterfall.setFrequencies(0.0, 4 * 689.0625);
    waterfall.image.setBounds(0.0, 0.0);
    const std::vector<double> magnitudes = {10000.0, 0.5, kNan, 1000.0};
    waterfall.image.drawFFTLine(magnitudes, 64, 1, 1);
    waterfall.image.setBounds(800.0, 4.0);
    waterfall.image.drawFFTLine(magnitudes, 64, 1, 1);
    testing::internal::CaptureStderr();
    waterfall.log.write();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "minSum:1e+07  maxSum:0  minV:999  maxV:0\n"
                                                      "minSum:0.5  maxSum:10000  minV:0  maxV:65.1293\n");
    EXPECT_EQ(waterfall.pixel(1023, 799), 0xFF00CEFF) << "in colour: step 166, 255 - 255 * 12 / 62 = 206";

    for (int line = 0; line < 16384 + 5; ++line)
        waterfall.image.drawFFTLine(magnitudes, 64, 1, 1);
    EXPECT_EQ(waterfall.loggedLines().size(), 16384U);
}

TEST(WaterfallImage, IsShownWhileItIsPainted) {
    Waterfall waterfall;
    const std::vector<std::int16_t> sound = tone(10, 64, 9000.0, 11025);
    std::atomic<bool> painting{true};
    std::thread capture([&] {
        for (int buffer = 0; buffer < 4; ++buffer)
            waterfall.analysis.capture(sound);
        painting = false;
    });
    ShownPicture shown;
    for (std::int32_t round = 0; painting || round == 0; ++round) {
        waterfall.parameters.waterfallSpeedup = 1 + round % 3;
        waterfall.parameters.fftSizeLog2 = 6 + round % 4;
        waterfall.image.setBounds(790.0 + round % 10, 190.0 + round % 10);
        shown.update(waterfall.image.bitmap(), 800, 200);
        waterfall.loggedLines();
    }
    capture.join();
    EXPECT_TRUE(showsTheView(shown, waterfall.image, 800, 200))
        << "what was painted meanwhile is made up for";
}

TEST(ShownPicture, BringsOverOnlyWhatWasPaintedAndScrollsWithoutACopy) {
    Waterfall waterfall;
    ShownPicture shown;
    for (const std::size_t columns : {1536U, 2U, 2U}) { // at the right edges of the picture and of the view
        EXPECT_LE(shown.update(waterfall.image.bitmap(), 800, 1000).size(), 2U);
        EXPECT_EQ(shown.copiedColumns(), columns);
        waterfall.image.drawFFTLine(std::vector<double>(64, 1e9), 64, 1, 1);
    }
}

TEST(WaterfallMeasurement, TellsTheFrequencyAndTheTimeSinceTheRightClick) {
    WaterfallParameters parameters;
    parameters.waterfallStartFreq = 100.0;
    parameters.waterfallEndFreq = 1300.0;
    WaterfallMeasurement measurement(parameters);
    testing::internal::CaptureStderr();
    EXPECT_EQ(measurement.mouseDown(30.0, 0.0, 600.0).deltaX, 30.0F) << "the reference is 0 at first";
    measurement.rightMouseDown(150.0, 7.0);
    const WaterfallClick click = measurement.mouseDown(250.0, 30.25, 600.0);
    EXPECT_EQ(measurement.setMouseHz(click.frequency, click.deltaX), "160 Hz  18576 mSec");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "mouseDown 0  100  1200  2  \n"
              "rightMouseDown 150 7\n"
              "mouseDown 30.25  160.5  1200  2  \n"
              "setMouseHz 160.5 Hz deltaX 100  pixels/sec 5.3833   milliseconds: 18576 \n");

    parameters.waterfallFftLen = 1024.0; // 3 * 44100 / 1024 = 129.19921875 columns a second
    parameters.waterfallSpeedup = 3;
    EXPECT_EQ(measurement.setMouseHz(-0.9F, -100.0F), "0 Hz  -773.998 mSec");
    parameters.slowSeconds = 2.0;
    EXPECT_EQ(measurement.setMouseHz(5.0F, 30.0F), "5 Hz  60000 mSec");
    parameters.waterfallSpeedup = 0;
    EXPECT_EQ(measurement.setMouseHz(5.0F, 0.0F), "5 Hz  0 columns (no time while paused)");
    const WaterfallClick early = measurement.mouseDown(10.0, 20.0, 0.0); // before there is a picture
    EXPECT_EQ(measurement.setMouseHz(early.frequency, early.deltaX),
              "no frequency  -140 columns (no time while paused)");
}

/// A second of 44 columns of a tone whose row is 403 of 1000.
void hearTone(Waterfall& waterfall) {
    waterfall.analysis.capture(tone(206, 1024, 1000.0, 44 * 1024 + 1));
}

WaterfallReading readAt(const Waterfall& waterfall, double x, double y,
                        const std::optional<PictureReference>& reference = {}) {
    return WaterfallReadout(waterfall.parameters, waterfall.image, waterfall.image.scrolled())
        .read({x, y}, reference);
}

TEST(WaterfallReadout, TellsWhatIsUnderAPointAndSinceAReferenceThatMovesAlong) {
    Waterfall waterfall;
    hearTone(waterfall);
    constexpr double kColumn = 1024 / 44100.0;
    const WaterfallReadout then(waterfall.parameters, waterfall.image, waterfall.image.scrolled());
    EXPECT_EQ(then.timeAxis(), (Axis{800 * kColumn, 0}));
    const PictureReference reference = then.reference({780.0, 300.0});
    waterfall.analysis.capture(tone(206, 1024, 1000.0, 10 * 1024));
    const WaterfallReading reading = readAt(waterfall, 790.0, 402.5, reference);
    EXPECT_NEAR(*reading.frequencyHz, 402.5 * 22.05, 1e-9);
    EXPECT_NEAR(*reading.secondsAgo, 9 * kColumn, 1e-9);
    EXPECT_NEAR(*reading.secondsFromReference, 20 * kColumn, 1e-9) << "it is at 770 now";
    EXPECT_NEAR(*reading.hertzFromReference, 102.5 * 22.05, 1e-9);
    // 1000 * 1024 / 2 is 512000, 82.16 on the scale, whose steps are 0.2 wide.
    EXPECT_NEAR(*readAt(waterfall, 799.0, 403.5).levelDb, 82.16, 0.1);
    EXPECT_FALSE(readAt(waterfall, 700.0, 402.5).levelDb) << "nothing was painted there";
    EXPECT_FALSE(readAt(waterfall, 790.0, 402.5).secondsFromReference) << "without a reference";
}

TEST(WaterfallReadout, SaysWhereColoursEndWhateverTheLimitsAreNow) {
    for (const auto& [floor, ceiling] : {std::pair{50.0F, 80.0F}, {80.0F, 50.0F}}) {
        Waterfall waterfall;
        waterfall.setLimits(floor, ceiling);
        waterfall.parameters.colorWaterfallPlot = floor > ceiling;
        hearTone(waterfall);
        waterfall.setLimits(0.0F, 150.0F);
        for (const auto& [y, level, bound] : {std::tuple{100.5, 50.0, WaterfallReading::Bound::Upper},
                                              {403.5, 80.0, WaterfallReading::Bound::Lower}}) {
            const WaterfallReading reading = readAt(waterfall, 799.0, y);
            EXPECT_EQ(reading.levelDb, level) << y;
            EXPECT_EQ(reading.levelBound, bound) << y;
        }
    }
}

TEST(WaterfallReadout, KnowsWhatIsOfAnotherScaleOrOlderThanAGap) {
    const struct {
        const char* what;
        void (*change)(Waterfall&);
        bool isOther, hasOtherRows;
        TimeScale times;
    } cases[] = {
        {"nothing", [](Waterfall&) {}, false, false, TimeScale::Current},
        {"limits", [](Waterfall& w) { w.setLimits(0.0F, 20.0F); }, false, false, TimeScale::Current},
        {"top", [](Waterfall& w) { w.setFrequencies(0.0, 20000.0); }, true, true, TimeScale::Current},
        {"height", [](Waterfall& w) { w.image.setBounds(800.0, 900.0); }, true, true, TimeScale::Current},
        {"width", [](Waterfall& w) { w.image.setBounds(900.0, 1000.0); }, true, false, TimeScale::Other},
        {"window", [](Waterfall& w) { w.parameters.waterfallWindowType = 2; }, true, false,
         TimeScale::Current},
        {"channel", [](Waterfall& w) { w.parameters.channel = ChannelFold::Left; }, true, false,
         TimeScale::BeforeGap},
        {"size", [](Waterfall& w) { w.parameters.fftSizeLog2 = 9; }, true, false, TimeScale::Other},
        {"speed-up", [](Waterfall& w) { w.parameters.waterfallSpeedup = 2; }, true, false, TimeScale::Other},
        {"slow", [](Waterfall& w) { w.parameters.slowSeconds = 0.1; }, true, false, TimeScale::Other},
        {"gap", [](Waterfall& w) { w.analysis.interrupt(), w.analysis.resume(); }, false, false,
         TimeScale::BeforeGap},
    };
    for (const auto& tried : cases) {
        SCOPED_TRACE(tried.what);
        Waterfall waterfall;
        hearTone(waterfall);
        const ColumnNumber newest = waterfall.image.scrolled() + 799;
        tried.change(waterfall);
        hearTone(waterfall);
        const auto at = static_cast<double>(newest - waterfall.image.scrolled());
        EXPECT_EQ(waterfall.image.scaleBegin() > newest, tried.isOther);
        const WaterfallReading old = readAt(waterfall, at, 402.5);
        EXPECT_EQ(old.frequencyHz.has_value(), !tried.hasOtherRows);
        EXPECT_EQ(old.times, tried.times);
        EXPECT_EQ(old.secondsAgo.has_value(), tried.times == TimeScale::Current);
        const double right = static_cast<double>(waterfall.image.bounds().width) - 1;
        for (const double x : {at + (right > 799 ? 102 : 2), right}) {
            EXPECT_TRUE(readAt(waterfall, x, 402.5).frequencyHz);
            EXPECT_TRUE(readAt(waterfall, x, 402.5).secondsAgo);
        }
    }
}

TEST(WaterfallReadout, FitsTheLimitsToWhatMostColumnsHoldHoweverTheyWerePainted) {
    Waterfall waterfall;
    const auto levels = [&waterfall] {
        return WaterfallReadout(waterfall.parameters, waterfall.image, waterfall.image.scrolled())
            .levelsInView();
    };
    EXPECT_FALSE(levels()) << "nothing in view";
    waterfall.analysis.capture(std::vector<std::int16_t>(std::size_t{2} * 1025));
    EXPECT_FALSE(levels()) << "only silence";
    waterfall.setLimits(60.0F, 61.0F);
    std::mt19937 random(5);
    std::vector<std::int16_t> noisyTone = tone(206, 1024, 10000.0, 4 * 1024);
    for (std::int16_t& sample : noisyTone)
        sample = static_cast<std::int16_t>(sample + static_cast<int>(random() % 200));
    waterfall.analysis.capture(noisyTone);
    ASSERT_TRUE(levels());
    EXPECT_NEAR(levels()->highest, 6.25 * std::log(10000.0 * 512), 0.1);
    EXPECT_GT(levels()->lowest, 10.0) << "in spite of the silent column";
}

TEST(LevelScale, PutsMagnitudesOnStepsBetweenFloorAndCeiling) {
    using Case = std::tuple<float, float, double, std::int32_t>;
    for (const auto& [minDB, maxDB, magnitude, step] :
         {Case{25, 75, 54.0, 0}, Case{25, 75, 1000.0, 92}, Case{25, 75, 10000.0, 166},
          Case{25, 75, 157700.0, 253}, Case{25, 75, 162755.0, 254}, Case{25, 75, kInfinity, 254},
          Case{25, 75, kNan, 0}, Case{-50, 50, 0.5, 127},    // silence in mid-scale
          Case{75, 25, 1.0, 254}, Case{75, 25, 10000.0, 88}, // crossed: loud is dark
          Case{50, 50, 1.0, 0}, Case{50, 50, 10000.0, 254}}) {
        EXPECT_EQ(LevelScale(minDB, maxDB).step(magnitude), step)
            << minDB << ".." << maxDB << " " << magnitude;
    }
}

TEST(ColorMap, RunsFromBlackOverBlueCyanGreenYellowAndRedToPurple) {
    using Entry = std::pair<std::size_t, std::uint32_t>; // a step, and alpha, blue, green, red
    ColorMap map;
    for (const auto& [step, word] :
         {Entry{0, 0xFF000000}, Entry{42, 0xFFF90000}, Entry{43, 0xFFFF0000}, Entry{44, 0xFFFF0500},
          Entry{86, 0xFFFFFF00}, Entry{88, 0xFFF8FF00}, Entry{119, 0xFF00FF00}, Entry{121, 0xFF00FF07},
          Entry{153, 0xFF00FFFF}, Entry{155, 0xFF00FBFF}, Entry{216, 0xFF0000FF}, Entry{218, 0xFF0300FF},
          Entry{255, 0xFF8000FF}})
        EXPECT_EQ(map.colors()[step], word) << step;
}

} // namespace
} // namespace sonotrace
