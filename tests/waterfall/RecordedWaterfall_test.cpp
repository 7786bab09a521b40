#include "WaterfallFixture.h"

#include "waterfall/RecordedWaterfall.h"
#include "waterfall/WaterfallLines.h"

#include <memory>
#include <span>

namespace sonotrace {
namespace {

std::vector<std::uint32_t> wholePicture(const WaterfallImage& image) {
    std::vector<std::uint32_t> whole(std::size_t{1536} * 1024);
    image.copyRows(0, 1024, 1536, reinterpret_cast<std::uint8_t*>(whole.data()), 6144);
    return whole;
}

std::unique_ptr<RecordedWaterfall> painted(const RecordedWaterfallSettings& settings,
                                           std::span<const std::int16_t> sound, std::size_t piece) {
    auto waterfall = std::make_unique<RecordedWaterfall>(settings, sound.size() / 2);
    for (; !sound.empty(); sound = sound.subspan(std::min(piece, sound.size())))
        waterfall->add(sound.first(std::min(piece, sound.size())));
    EXPECT_TRUE(waterfall->finish());
    return waterfall;
}

TEST(RecordedWaterfall, IsToTheBitWhatTheWindowPaints) {
    const std::vector<std::int16_t> sound = tone(206, 1024, 1000.0, 40 * 1024);
    for (const auto& [speedup, seconds] : {std::pair{1, 0.0}, {7, 0.0}, {3, 0.1}}) {
        Waterfall window(1024, 10, speedup);
        window.parameters.slowSeconds = seconds;
        window.analysis.capture(sound);
        window.analysis.capture(std::vector<std::int16_t>(2)); // a line waits for more than its samples
        RecordedWaterfallSettings settings{.log2Length = 10,
                                           .channel = ChannelFold::Sum,
                                           .minDB = 50.0F,
                                           .maxDB = 100.0F,
                                           .isColoured = false,
                                           .width = 800,
                                           .height = 1000,
                                           .speedup = speedup};
        if (seconds > 0.0)
            settings.secondsPerColumn = seconds;
        const auto recorded = painted(settings, sound, 9998);
        EXPECT_TRUE(wholePicture(recorded->image()) == wholePicture(window.image)) << speedup;
    }
}

TEST(RecordedWaterfall, FillsThePictureWithTheWholeRecording) {
    for (const auto& [log2Length, frames] : {std::pair{6, 500},
                                             {6, 44100},
                                             {10, 1500},
                                             {10, 300000},
                                             {10, 1048576},
                                             {10, 3000000},
                                             {13, 700000},
                                             {13, 1000000},
                                             {17, 131072},
                                             {17, 400000}}) {
        SCOPED_TRACE(testing::Message() << log2Length << " " << frames);
        const std::vector<std::int16_t> sound(std::size_t{2} * static_cast<std::size_t>(frames), 50);
        const auto waterfall = painted({.log2Length = log2Length, .width = 500, .height = 20}, sound, 100000);
        const WaterfallLines lines = linesInView(waterfall->image());
        const auto width = static_cast<std::size_t>(waterfall->image().bounds().width);
        EXPECT_EQ(lines.columns.size(), width);
        EXPECT_LE(width, 500U);
        EXPECT_GE(width, 250U);
        const double shown = static_cast<double>(lines.columns.size()) * lines.scale.source.samples;
        EXPECT_LE(shown, frames);
        EXPECT_GT(shown, 0.98 * frames - (2 << log2Length));
    }
}

TEST(RecordedWaterfall, IsTheSameInParts) {
    std::vector<std::int16_t> sound = tone(206, 1024, 1000.0, 700000); // the last part is not whole
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = static_cast<std::int16_t>(sound[i] + static_cast<int>(i / 100 % 97));
    for (const std::int32_t width : {600, 150}) { // columns of one line, and of five
        const RecordedWaterfallSettings settings{.log2Length = 10, .width = width, .height = 300};
        const auto whole = painted(settings, sound, 10000);
        RecordedWaterfall together(settings, sound.size() / 2);
        RecordedWaterfall part(settings, sound.size() / 2);
        const std::size_t samples = 2 * part.framesPerPart();
        ASSERT_GT(samples, 0U);
        for (std::span<const std::int16_t> rest = sound; !rest.empty();
             rest = rest.subspan(std::min(samples, rest.size())))
            together.append(part, part.paintPart(rest.first(std::min(samples, rest.size()))));
        EXPECT_TRUE(together.finish());
        EXPECT_TRUE(wholePicture(together.image()) == wholePicture(whole->image())) << width;
        EXPECT_EQ(linesInView(together.image()).hundredths, linesInView(whole->image()).hundredths) << width;
        EXPECT_EQ(together.image().samplesPerColumn(), whole->image().samplesPerColumn());
    }
}

TEST(RecordedWaterfall, FitsItsColoursAsIfTheyHadBeenKnown) {
    std::vector<std::int16_t> sound = tone(206, 1024, 10000.0, 100 * 1024);
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = static_cast<std::int16_t>(sound[i] + static_cast<int>(i * 7919 % 97));
    RecordedWaterfallSettings settings{.log2Length = 10, .isColoured = false, .speedup = 1};
    const auto fitted = painted(settings, sound, 10000);
    settings.minDB = fitted->parameters().waterfallMinDB.load();
    settings.maxDB = fitted->parameters().waterfallMaxDB.load();
    EXPECT_NEAR(*settings.maxDB, 6.25 * std::log(10000.0 * 512), 1.0);
    const auto known = painted(settings, sound, 10000);
    const std::vector<std::uint32_t> fittedPixels = wholePicture(fitted->image());
    const std::vector<std::uint32_t> knownPixels = wholePicture(known->image());
    std::size_t others = 0;
    for (std::size_t i = 0; i < knownPixels.size(); ++i) {
        const int difference =
            static_cast<int>(fittedPixels[i] & 0xFFU) - static_cast<int>(knownPixels[i] & 0xFFU);
        EXPECT_LE(std::abs(difference), 1) << "but for the rounding to hundredths";
        others += difference != 0 ? 1 : 0;
    }
    EXPECT_LT(others, knownPixels.size() / 20);
    EXPECT_EQ(fitted->image().levels(fitted->image().scrolled() + 1500)->maxDB, *settings.maxDB);

    const auto silent = painted({}, std::vector<std::int16_t>(40000), 10000);
    EXPECT_EQ(wholePicture(silent->image())[1000], 0xFF000000U) << "the darkest colour";
}

} // namespace
} // namespace sonotrace
