#include "WaterfallFixture.h"

#include <limits>

namespace sonotrace {
namespace {

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
        waterfall.parameters.waterfallMinDB = minDB;
        waterfall.parameters.waterfallMaxDB = maxDB;
        waterfall.parameters.waterfallFftLen = length;
        waterfall.parameters.fftSizeLog2 = requestedLog2;
        waterfall.parameters.waterfallSpeedup = speedup;
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

TEST(HostileValues, KeepALargeViewWithinThePicture) {
    Waterfall waterfall;
    Values{}.applyTo(waterfall);
    waterfall.image.setBounds(5000.0, 3000.0);
    waterfall.image.drawFFTLine(std::vector<double>(64, 1e9), 64, 1, 1);
    EXPECT_EQ(waterfall.pixel(0, 1535), 0xFFFEFEFE);
    for (const std::int32_t offset : {0, -1, 1537, kSmallest, kLargest})
        waterfall.image.drawFFTLine(std::vector<double>(64, 1.0), 64, offset, 0);
    EXPECT_EQ(waterfall.pixel(0, 1535), 0xFFFEFEFE);
    EXPECT_EQ(waterfall.pixel(0, 0), 0U);
    for (const std::int32_t len : {0, -64, kSmallest})
        waterfall.image.drawFFTLine(std::vector<double>(64, 1.0), len, 1, 1);
    waterfall.image.drawFFTLine({}, 64, 1, 1);
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
