#include "waterfall/WaterfallImage.h"

#include "base/Numbers.h"
#include "base/SystemLog.h"
#include "waterfall/LevelScale.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <utility>
#include <vector>

namespace sonotrace {

namespace {

float withinPicture(double size, std::int32_t limit) {
    return size > 0.0 ? static_cast<float>(std::min(size, static_cast<double>(limit))) : 0.0F;
}

/// Extremes of the magnitudes as the scale sees them.
struct AudibleRange {
    double smallest = std::numeric_limits<double>::infinity();
    double largest = 1.0;

    void add(double audible) {
        smallest = audible < smallest ? audible : smallest;
        largest = audible > largest ? audible : largest;
    }
};

} // namespace

void WaterfallImage::myinit() const {
    constexpr std::int32_t kBitsPerPixel = ScrollingBitmap::kBytesPerPixel * 8;
    systemLog("colorSpaceName: %s", "calibrated RGB");
    systemLog("bitsPerPixel: %d", kBitsPerPixel);
    systemLog("bytesPerRow: %d", ScrollingBitmap::kBytesPerRow);
    systemLog("bytesPerPlane: %d", ScrollingBitmap::kBytesPerRow * ScrollingBitmap::kHeight);
    systemLog("numberOfPlanes: %d", 1);
    systemLog("bitmapData: %x",
              static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(offscreen_.address())));
}

void WaterfallImage::setBounds(double width, double height) {
    const auto widthBits = std::bit_cast<std::uint32_t>(withinPicture(width, ScrollingBitmap::kWidth));
    const auto heightBits = std::bit_cast<std::uint32_t>(withinPicture(height, ScrollingBitmap::kHeight));
    bounds_.store(std::uint64_t{heightBits} << 32U | widthBits, std::memory_order_relaxed);
}

WaterfallBounds WaterfallImage::bounds() const {
    const std::uint64_t bits = bounds_.load(std::memory_order_relaxed);
    return {std::bit_cast<float>(static_cast<std::uint32_t>(bits)),
            std::bit_cast<float>(static_cast<std::uint32_t>(bits >> 32U))};
}

void WaterfallImage::takeScale(std::int32_t len, std::size_t bins, const WaterfallBounds& bounds) {
    scale_.rows = {.startFreq = parameters_.waterfallStartFreq.load(std::memory_order_relaxed),
                   .endFreq = parameters_.waterfallEndFreq.load(std::memory_order_relaxed),
                   .height = bounds.height,
                   .len = len,
                   .bins = bins};
    scale_.width = bounds.width;
    bins_.setScale(scale_.rows);
}

std::size_t WaterfallImage::binsFor(std::int32_t len) {
    const auto all = static_cast<std::size_t>(len);
    takeScale(len, all, bounds());
    const std::size_t half = all / 2 + 1;
    return bins_.end() <= half ? half : all;
}

void WaterfallImage::drawFFTLine(std::span<const double> magnitudes, std::int32_t len, std::int32_t offset,
                                 std::int32_t scroll) {
    constexpr auto kRelaxed = std::memory_order_relaxed;
    const WaterfallBounds bounds = this->bounds();
    LineStatistics statistics;
    if (!(bounds.height > 0.0F) || magnitudes.empty()) {
        log_.add(statistics.logRecord()); // nothing to paint on yet: the line is lost
        return;
    }
    takeScale(len, magnitudes.size(), bounds);
    const float minDB = parameters_.waterfallMinDB.load(kRelaxed);
    const float maxDB = parameters_.waterfallMaxDB.load(kRelaxed);
    const LevelScale scale(minDB, maxDB);
    const auto& pixels = palette();
    const std::int32_t column = truncateToInt32(static_cast<double>(bounds.width) - offset);
    const bool scrolls = scroll > 0 && scroll < ScrollingBitmap::kWidth;
    const bool paints = column >= 0 && column < ScrollingBitmap::kWidth;

    AudibleRange audible;
    double previous = std::numeric_limits<double>::quiet_NaN();
    std::uint32_t pixel = 0;
    std::uint16_t hundredths = 0;
    std::array<std::uint32_t, RowBins::kMostRows> words; // of the rows, the last one at the end
    std::array<std::uint16_t, RowBins::kMostRows> levels;
    for (std::size_t y = 0; y < bins_.rows(); ++y) {
        const double value = bins_.value(magnitudes, y);
        if (value != previous) { // with few bins many rows share one, and a logarithm is what costs
            previous = value;
            const double decibels = LevelScale::decibels(value);
            pixel = pixels[static_cast<std::size_t>(scale.stepAt(decibels))];
            hundredths = LevelScale::hundredths(decibels);
        }
        words[words.size() - 1 - y] = pixel;
        levels[y] = hundredths;
        statistics.addMagnitude(value);
        audible.add(LevelScale::audible(value));
    }
    if (scrolls) {
        offscreen_.scrollRows(bins_.rows(), scroll);
        scrolled_.store(scrolled() + scroll, kRelaxed);
    }
    number(scrolled() + column);
    kept_.keep(scrolled() + column,
               {static_cast<float>(LevelScale::decibels(audible.smallest)),
                static_cast<float>(LevelScale::decibels(audible.largest)), minDB, maxDB},
               scale_, std::span(levels).first(bins_.rows()));
    if (paints)
        offscreen_.paintColumn(std::span(words).last(bins_.rows()), column);
    // The level follows the magnitude upward, or downward with crossed limits: its extremes are at the ends.
    statistics.addLevel(scale.level(audible.smallest));
    statistics.addLevel(scale.level(audible.largest));
    log_.add(statistics.logRecord());
}

void WaterfallImage::append(const WaterfallImage& other, std::int32_t columns) {
    const auto newest = other.kept_.newestScale();
    if (!newest || columns <= 0)
        return;
    scale_ = newest->scale;
    const std::size_t rows = RowBins::rowsOf(scale_.rows.height);
    const auto end = truncateToInt32(static_cast<double>(scale_.width));
    std::vector<std::uint16_t> levels(rows);
    std::vector<std::uint32_t> words(rows);
    for (std::int32_t place = std::max(end - columns, 0); place < end; ++place) {
        const ColumnNumber column = other.scrolled() + place;
        const auto extremes = other.kept_.levels(column);
        if (!extremes || !other.kept_.copyRows(column, newest->number, levels))
            continue;
        for (std::size_t i = 0; i < rows; ++i) {
            const auto row = static_cast<std::int32_t>(ScrollingBitmap::kHeight - rows + i);
            words[i] =
                other.offscreen_.word(row, (other.offscreen_.origin(row) + place) % ScrollingBitmap::kWidth);
        }
        offscreen_.scrollRows(rows, 1);
        scrolled_.store(scrolled() + 1, std::memory_order_relaxed);
        number(scrolled() + end - 1);
        kept_.keep(scrolled() + end - 1, *extremes, scale_, levels);
        offscreen_.paintColumn(words, end - 1);
    }
}

void WaterfallImage::repaint() {
    const auto newest = kept_.newestScale();
    if (!newest)
        return;
    const float minDB = parameters_.waterfallMinDB.load(std::memory_order_relaxed);
    const float maxDB = parameters_.waterfallMaxDB.load(std::memory_order_relaxed);
    const LevelScale scale(minDB, maxDB);
    const auto& pixels = palette();
    std::vector<std::uint16_t> levels(RowBins::rowsOf(newest->scale.rows.height));
    std::vector<std::uint32_t> words(levels.size());
    for (std::int32_t column = 0; column < ScrollingBitmap::kWidth; ++column) {
        auto extremes = kept_.levels(scrolled() + column);
        if (!extremes || !kept_.copyRows(scrolled() + column, newest->number, levels))
            continue;
        std::ranges::transform(levels, words.rbegin(), [&](std::uint16_t level) {
            return pixels[static_cast<std::size_t>(scale.stepAt(level / 100.0))];
        });
        offscreen_.paintColumn(words, column);
        extremes->minDB = minDB;
        extremes->maxDB = maxDB;
        kept_.keep(scrolled() + column, *extremes, newest->scale, levels);
    }
}

/// Notes where the columns begin that it can be compared with.
void WaterfallImage::number(ColumnNumber column) {
    constexpr auto kRelaxed = std::memory_order_relaxed;
    const ColumnScale last = std::exchange(lastScale_, scale_);
    const bool hadGap = std::exchange(hasGap_, false);
    if (samplesPerColumn() > 0.0) { // not the first: there is something left of it
        const auto beginUnless = [column](bool isSame, std::atomic<ColumnNumber>& begin) {
            if (!isSame)
                begin.store(column, kRelaxed);
        };
        beginUnless(scale_ == last, scaleBegin_);
        beginUnless(scale_.hasRowsOf(last), rowsBegin_);
        beginUnless(scale_.hasRateOf(last), rateBegin_);
        beginUnless(!hadGap, gapEnd_);
    }
    samplesPerColumn_.store(scale_.source.samples, kRelaxed);
}

std::optional<std::int32_t> WaterfallImage::stepAt(std::int32_t row, std::int32_t column) const {
    if (row < 0 || row >= ScrollingBitmap::kHeight || column < 0 || column >= ScrollingBitmap::kWidth)
        return std::nullopt;
    return colors_.stepOf(offscreen_.word(row, (offscreen_.origin(row) + column) % ScrollingBitmap::kWidth));
}

} // namespace sonotrace
