#include "WaterfallFixture.h"

#include "waterfall/LevelScale.h"

#include <random>
#include <thread>

namespace sonotrace {
namespace {

struct Line {
    double width, height, startFreq, endFreq;
    std::int32_t len, offset, scroll;
};

/// The picture as a plain block of memory whose rows are moved pixel by pixel, painted in grey.
class PlainPicture {
public:
    void draw(const std::vector<double>& magnitudes, const Line& line, const LevelScale& scale) {
        const double binWidth = 44100.0 / line.len;
        const double rowStep = (line.endFreq - line.startFreq) / line.height;
        for (int y = 0; y < line.height; ++y) {
            const auto lo = static_cast<std::size_t>((line.startFreq + y * rowStep) / binWidth);
            const auto hi = static_cast<std::size_t>((line.startFreq + (y + 1) * rowStep) / binWidth);
            double value = magnitudes[lo];
            if (hi - lo >= 2) {
                value = 0.0;
                for (std::size_t bin = lo; bin < hi; ++bin)
                    value += magnitudes[bin];
                value /= static_cast<double>(hi - lo);
            }
            std::uint32_t* const row = pixels.data() + std::ptrdiff_t{1023 - y} * 1536;
            if (line.scroll > 0 && line.scroll < 1536)
                std::memmove(row, row + line.scroll, static_cast<std::size_t>(6144 - 4 * line.scroll));
            const int column = static_cast<int>(line.width - line.offset);
            if (column >= 0 && column < 1536)
                row[column] = 0xFF000000U + 0x010101U * static_cast<std::uint32_t>(scale.step(value));
        }
    }

    std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(1536 * 1024);
};

TEST(WaterfallImage, IsAfterAnyLinesTheOneWhoseRowsWereMoved) {
    std::mt19937 random(11);
    const auto pick = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    Waterfall waterfall;
    waterfall.parameters.colorWaterfallPlot = 0;
    PlainPicture plain;
    const LevelScale scale(50.0F, 100.0F);
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
        plain.draw(magnitudes, line, scale);
    }
    std::vector<std::uint32_t> shown(plain.pixels.size());
    waterfall.image.copyRows(0, 1024, 1536, reinterpret_cast<std::uint8_t*>(shown.data()), 6144);
    EXPECT_TRUE(shown == plain.pixels);

    // The bottom-left corner, row by row, within lines that are longer than it; nothing else is written.
    std::vector<std::uint32_t> corner(std::size_t{100} * 37, 0x12345678U);
    waterfall.image.copyRows(1024 - 37, 37, 77, reinterpret_cast<std::uint8_t*>(corner.data()), 400);
    for (std::size_t y = 0; y < 37; ++y)
        for (std::size_t x = 0; x < 100; ++x)
            ASSERT_EQ(corner[y * 100 + x], x < 77 ? plain.pixels[(1024 - 37 + y) * 1536 + x] : 0x12345678U);
}

TEST(WaterfallImage, CopiesOnlyRowsAndColumnsThatExist) {
    Waterfall waterfall;
    waterfall.image.setBounds(1536.0, 1024.0);
    waterfall.image.drawFFTLine(std::vector<double>(64, 1e9), 64, 1536, 0); // the leftmost column
    struct Case {
        std::int32_t firstRow, rows, columns;
        std::size_t begin, end; ///< lines of the target that are written
    };
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    for (const Case& c : {Case{-3, 8, 2, 3, 8}, Case{1020, kMost, kMost, 0, 4}, Case{1024, 5, 5, 0, 0},
                          Case{kMost, kMost, 5, 0, 0}, Case{-kMost, 5, 5, 0, 0}, Case{0, -1, 5, 0, 0},
                          Case{0, 5, -1, 0, 0}}) {
        std::vector<std::uint32_t> target(std::size_t{8} * 1536, 7U);
        waterfall.image.copyRows(c.firstRow, c.rows, c.columns,
                                 reinterpret_cast<std::uint8_t*>(target.data()), 6144);
        for (std::size_t line = 0; line < 8; ++line)
            EXPECT_EQ(target[line * 1536] != 7U, line >= c.begin && line < c.end)
                << c.firstRow << " " << line;
    }
}

TEST(WaterfallImage, PaintsInColourWhenAskedTo) {
    Waterfall waterfall;
    waterfall.parameters.waterfallMinDB = 25.0F;
    waterfall.parameters.waterfallMaxDB = 75.0F;
    waterfall.image.setBounds(3.0, 1.0);
    waterfall.image.drawFFTLine(std::vector<double>{10000.0}, 64, 1,
                                0); // step 166: 255 - 255 * 12 / 62 = 206
    EXPECT_EQ(waterfall.pixel(1023, 2), 0xFF00CEFF);
    EXPECT_EQ(waterfall.pixel(1022, 2), 0U);
}

TEST(WaterfallImage, LogsTheExtremesOfEachLineAndOfLinesThatFoundNoView) {
    Waterfall waterfall;
    waterfall.parameters.waterfallMinDB = 25.0F;
    waterfall.parameters.waterfallMaxDB = 75.0F;
    waterfall.parameters.waterfallEndFreq = 4 * 689.0625;
    const std::vector<double> magnitudes = {10000.0, 0.5, std::nan(""), 1000.0};
    waterfall.image.drawFFTLine(magnitudes, 64, 1, 1);
    waterfall.image.setBounds(800.0, 4.0);
    waterfall.image.drawFFTLine(magnitudes, 64, 1, 1);
    testing::internal::CaptureStderr();
    waterfall.image.writeLineLog();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "minSum:1e+07  maxSum:0  minV:999  maxV:0\n"
                                                      "minSum:0.5  maxSum:10000  minV:0  maxV:65.1293\n");

    for (int line = 0; line < 16384 + 5; ++line)
        waterfall.image.drawFFTLine(magnitudes, 64, 1, 1);
    EXPECT_EQ(waterfall.image.unloggedLines(), 5U);
    EXPECT_EQ(waterfall.loggedLines().size(), 16384U);
    waterfall.image.drawFFTLine(magnitudes, 64, 1, 1);
    EXPECT_EQ(waterfall.loggedLines().size(), 1U);
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
    bool allOpaque = true;
    for (std::int32_t round = 0; painting || round == 0; ++round) {
        waterfall.parameters.waterfallSpeedup = 1 + round % 3;
        waterfall.parameters.fftSizeLog2 = 6 + round % 4;
        waterfall.image.setBounds(990.0 + round % 10, 190.0 + round % 10);
        waterfall.image.copyRows(1024 - 200, 200, 1000, reinterpret_cast<std::uint8_t*>(view.data()), 4000);
        for (const std::uint32_t word : view)
            allOpaque = allOpaque && (word == 0 || word >> 24U == 0xFFU);
        testing::internal::CaptureStderr();
        waterfall.image.writeLineLog();
        testing::internal::GetCapturedStderr();
    }
    capture.join();
    EXPECT_TRUE(allOpaque);
}

} // namespace
} // namespace sonotrace
