#include "WaterfallFixture.h"

#include "waterfall/LevelScale.h"
#include "waterfall/WaterfallTable.h"

#include <thread>

namespace sonotrace {
namespace {

TEST(WaterfallLines, AreTheLevelsThatTheColoursShowWhileThePictureScrolls) {
    Waterfall waterfall(1024, 10, 3);
    waterfall.setLimits(30.0F, 81.0F);             // the tone is louder, and some of the noise is below
    for (int buffer = 0; buffer < 200; ++buffer) { // once around
        std::vector<std::int16_t> sound = tone(10 + buffer, 1024, 1000.0, 3 * 1024 + 100 * (buffer % 3));
        for (std::size_t i = 0; i < sound.size(); ++i)
            sound[i] = static_cast<std::int16_t>(sound[i] + static_cast<int>(i * 7919 % 41));
        waterfall.analysis.capture(sound);
    }
    const WaterfallLines lines = linesInView(waterfall.image);
    ASSERT_EQ(lines.columns.size(), 800U);
    ASSERT_EQ(lines.rows, 1000U);
    const LevelScale scale(30.0F, 81.0F);
    int highest = 0;
    for (std::size_t i = 0; i < 800; i += 7)
        for (std::size_t row = 0; row < 1000; ++row) {
            const int level = lines.line(i)[row];
            highest = std::max(highest, level);
            const auto shown = static_cast<int>(
                waterfall.pixel(static_cast<std::int32_t>(1023 - row), static_cast<std::int32_t>(i)) & 0xFFU);
            // Rounded to a hundredth, which may lie just beyond the end of a step.
            EXPECT_LE(scale.stepAt((level - 0.51) / 100.0), shown) << i << " " << row;
            EXPECT_GE(scale.stepAt((level + 0.51) / 100.0), shown) << i << " " << row;
        }
    EXPECT_NEAR(highest, 100 * 6.25 * std::log(1000.0 * 1024 / 4), 40) << "above the limit of the colours";
    EXPECT_DOUBLE_EQ(lines.seconds(0), -799 * 341 / 44100.0);
    EXPECT_DOUBLE_EQ(lines.frequencyHz(0), 11.025);
}

TEST(WaterfallTable, HoldsTheLinesOfOneScaleAndTellsWhatItLeavesOut) {
    Waterfall waterfall(64, 6, 1);
    waterfall.image.setBounds(6.0, 1.5);
    const std::vector<std::int16_t> silence(std::size_t{2} * 65);
    waterfall.analysis.capture(silence);
    waterfall.setFrequencies(0.0, 2 * 689.0625 * 1.5);
    waterfall.analysis.capture(silence);
    waterfall.analysis.interrupt();
    waterfall.analysis.resume();
    waterfall.analysis.capture(tone(2, 64, 1000.0, 65 + 64));
    // Means of 0 and 16000, and of 32000 and 16000.
    EXPECT_EQ(waterfallTable(linesInView(waterfall.image), std::vector<Setting>{{"Source", "loopback"}}),
              "# Source: loopback\n"
              "# FFT size: 64\n"
              "# Window: Hann\n"
              "# Channel: Left + Right\n"
              "# From: 0.000 Hz\n"
              "# To: 2067.188 Hz\n"
              "# Speed-up: 1\n"
              "# Column: 0.001451 s\n"
              "# Levels: dB of the display's own scale, 6.25 times the natural logarithm of the magnitude\n"
              "# Columns: time before the newest line, then the middle of each row of the picture in Hz; a "
              "row begins at the bin of that frequency, so that a tone reads up to one bin higher\n"
              "# Gap: sound is missing: the lines before it have no time\n"
              "# Left out: 1 older lines painted with other settings\n"
              "time_s,689.06,2067.19\n"
              ",0.00,0.00\n"
              "-0.001451,56.17,63.04\n"
              "0.000000,56.17,63.04\n");
    EXPECT_TRUE(waterfallTable(linesInView(Waterfall().image), {}).ends_with("time_s\n")) << "without a line";
}

TEST(WaterfallLines, AreOfOneScaleWhileThePictureIsPaintedWithMany) {
    Waterfall waterfall;
    std::atomic<bool> painting{true};
    std::thread capture([&] {
        for (int line = 0; line < 6000; ++line) {
            const int decibels = line / 3 % 100; // which the frequencies tell, too
            waterfall.setFrequencies(0.0, 10000.0 + decibels);
            waterfall.image.drawFFTLine(std::vector<double>(64, std::exp(decibels / 6.25)), 64, 1, 1);
        }
        painting = false;
    });
    std::size_t mixed = 0;
    do {
        const WaterfallLines lines = linesInView(waterfall.image);
        for (const std::uint16_t level : lines.hundredths)
            mixed += level != std::lround((lines.scale.rows.endFreq - 10000.0) * 100.0);
    } while (painting);
    capture.join();
    EXPECT_EQ(mixed, 0U);
}

} // namespace
} // namespace sonotrace
