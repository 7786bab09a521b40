#include "WaterfallFixture.h"

#include "waterfall/ColorMap.h"
#include "waterfall/LevelScale.h"
#include "waterfall/WaterfallMeasurement.h"

#include <numeric>
#include <random>
#include <span>
#include <thread>

namespace sonotrace {
namespace {

const double kNan = std::nan("");

struct Line {
    double width, height, startFreq, endFreq;
    std::int32_t len, offset, scroll;
};

/// Paints in grey on a plain block of memory whose rows are moved pixel by pixel.
void paint(std::vector<std::uint32_t>& pixels, const std::vector<double>& magnitudes, const Line& line) {
    const double binWidth = 44100.0 / line.len;
    const double rowStep = (line.endFreq - line.startFreq) / line.height;
    for (int y = 0; y < line.height; ++y) {
        const auto lo = static_cast<std::size_t>((line.startFreq + y * rowStep) / binWidth);
        const auto hi = static_cast<std::size_t>((line.startFreq + (y + 1) * rowStep) / binWidth);
        const auto bins = std::span(magnitudes).subspan(lo, hi - lo < 2 ? 1 : hi - lo);
        const double value =
            std::accumulate(bins.begin(), bins.end(), 0.0) / static_cast<double>(bins.size());
        std::uint32_t* const row = pixels.data() + std::ptrdiff_t{1023 - y} * 1536;
        if (line.scroll > 0 && line.scroll < 1536)
            std::memmove(row, row + line.scroll, static_cast<std::size_t>(6144 - 4 * line.scroll));
        const int column = static_cast<int>(line.width - line.offset);
        if (column >= 0 && column < 1536)
            row[column] =
                0xFF000000U + 0x010101U * static_cast<std::uint32_t>(LevelScale(50.0F, 100.0F).step(value));
    }
}

TEST(WaterfallImage, IsAfterAnyLinesTheOneWhoseRowsWereMoved) {
    std::mt19937 random(11);
    const auto pick = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    Waterfall waterfall;
    waterfall.parameters.colorWaterfallPlot = 0;
    std::vector<std::uint32_t> plain(1536 * 1024);
    std::vector<double> magnitudes(8192);
    for (int count = 0; count < 250; ++count) {
        for (double& magnitude : magnitudes)
            magnitude = std::exp(pick(0, 20000) / 1000.0);
        Line line{.width = pick(0, 2) / 2.0 + pick(1, 1535),
                  .height = pick(0, 1) / 2.0 + pick(1, 1023),
                  .startFreq = pick(0, 9000) / 1.0,
                  .endFreq = pick(9000, 22050) / 1.0,
                  .len = 64 << pick(0, 7),
                  .offset = pick(-20, 40),
                  .scroll = pick(0, 3) > 0 ? pick(-1, 3) : pick(-2000, 2000)};
        waterfall.parameters.waterfallStartFreq = line.startFreq;
        waterfall.parameters.waterfallEndFreq = line.endFreq;
        waterfall.image.setBounds(line.width, line.height);
        waterfall.image.drawFFTLine(magnitudes, line.len, line.offset, line.scroll);
        paint(plain, magnitudes, line);
    }
    std::vector<std::uint32_t> shown(plain.size());
    waterfall.image.copyRows(0, 1024, 1536, reinterpret_cast<std::uint8_t*>(shown.data()), 6144);
    EXPECT_TRUE(shown == plain);

    // The bottom-left corner, row by row, within lines that are longer than it; nothing else is written.
    std::vector<std::uint32_t> corner(std::size_t{100} * 37, 0x12345678U);
    waterfall.image.copyRows(1024 - 37, 37, 77, reinterpret_cast<std::uint8_t*>(corner.data()), 400);
    for (std::size_t i = 0; i < corner.size(); ++i)
        ASSERT_EQ(corner[i], i % 100 < 77 ? shown[(1024 - 37 + i / 100) * 1536 + i % 100] : 0x12345678U);
}

TEST(WaterfallImage, LogsTheExtremesOfEachLineAndOfLinesThatFoundNoView) {
    Waterfall waterfall;
    waterfall.setLimits(25.0F, 75.0F);
    waterfall.parameters.waterfallEndFreq = 4 * 689.0625;
    const std::vector<double> magnitudes = {10000.0, 0.5, std::nan(""), 1000.0};
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
    waterfall.parameters.waterfallEndFreq = 22050.0;
    waterfall.image.setBounds(1000.0, 200.0);
    const std::vector<std::int16_t> sound = tone(10, 64, 9000.0, 11025);
    std::atomic<bool> painting{true};
    std::thread capture([&] {
        for (int buffer = 0; buffer < 4; ++buffer)
            waterfall.analysis.capture(sound);
        painting = false;
    });
    std::vector<std::uint32_t> view(std::size_t{1000} * 200);
    for (std::int32_t round = 0; painting || round == 0; ++round) {
        waterfall.parameters.waterfallSpeedup = 1 + round % 3;
        waterfall.parameters.fftSizeLog2 = 6 + round % 4;
        waterfall.image.setBounds(990.0 + round % 10, 190.0 + round % 10);
        waterfall.image.copyRows(1024 - 200, 200, 1000, reinterpret_cast<std::uint8_t*>(view.data()), 4000);
        for (const std::uint32_t word : view)
            EXPECT_TRUE(word == 0 || word >> 24U == 0xFFU) << word;
        waterfall.loggedLines();
    }
    capture.join();
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
    parameters.waterfallSpeedup = 0;
    EXPECT_EQ(measurement.setMouseHz(static_cast<float>(kNan), 1.0F), "-2147483648 Hz  inf mSec");
}

TEST(LevelScale, PutsMagnitudesOnStepsBetweenFloorAndCeiling) {
    struct Case {
        float minDB, maxDB;
        double magnitude;
        std::int32_t step;
    };
    for (const Case& c :
         {Case{25, 75, 54.0, 0}, Case{25, 75, 1000.0, 92}, Case{25, 75, 10000.0, 166},
          Case{25, 75, 157700.0, 253}, Case{25, 75, 162755.0, 254}, Case{25, 75, HUGE_VAL, 254},
          Case{25, 75, kNan, 0}, Case{-50, 50, 0.5, 127},    // silence in mid-scale
          Case{75, 25, 1.0, 254}, Case{75, 25, 10000.0, 88}, // crossed: loud is dark
          Case{50, 50, 1.0, 0}, Case{50, 50, 10000.0, 254}}) {
        EXPECT_EQ(LevelScale(c.minDB, c.maxDB).step(c.magnitude), c.step)
            << c.minDB << ".." << c.maxDB << " " << c.magnitude;
    }
}

TEST(ColorMap, RunsFromBlackOverBlueCyanGreenYellowAndRedToPurple) {
    using Entry = std::pair<std::size_t, std::uint32_t>; // alpha, blue, green, red
    ColorMap map;
    for (const auto& [step, word] :
         {Entry{0, 0xFF000000}, Entry{42, 0xFFF90000}, Entry{43, 0xFFFF0000}, Entry{44, 0xFFFF0500},
          Entry{86, 0xFFFFFF00}, Entry{88, 0xFFF8FF00}, Entry{119, 0xFF00FF00}, Entry{121, 0xFF00FF07},
          Entry{153, 0xFF00FFFF}, Entry{155, 0xFF00FBFF}, Entry{216, 0xFF0000FF}, Entry{218, 0xFF0300FF},
          Entry{255, 0xFF8000FF}})
        EXPECT_EQ(map.colors()[step], word) << step;
    EXPECT_EQ(map.greys()[200], 0xFFC8C8C8);
}

} // namespace
} // namespace sonotrace
