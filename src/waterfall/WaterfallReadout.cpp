#include "waterfall/WaterfallReadout.h"

#include "base/Numbers.h"
#include "base/SampleRate.h"
#include "waterfall/LevelScale.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace sonotrace {

namespace {
constexpr auto kRelaxed = std::memory_order_relaxed;
}

Axis WaterfallReadout::frequencyAxis() const {
    return {.from = parameters_.waterfallStartFreq.load(kRelaxed),
            .to = parameters_.waterfallEndFreq.load(kRelaxed)};
}

Axis WaterfallReadout::timeAxis() const {
    return {.from = secondsAgo(static_cast<double>(scrolled_)), .to = 0};
}

double WaterfallReadout::secondsAgo(double column) const {
    const double columns = static_cast<double>(scrolled_) + static_cast<double>(bounds_.width) - column;
    return columns * image_.samplesPerColumn() / kSampleRate;
}

double WaterfallReadout::frequency(double y) const {
    return frequencyAxis().valueAt(y / static_cast<double>(bounds_.height));
}

TimeScale WaterfallReadout::times(double column) const {
    if (column < static_cast<double>(image_.rateBegin()))
        return TimeScale::Other;
    return column < static_cast<double>(image_.gapEnd()) ? TimeScale::BeforeGap : TimeScale::Current;
}

PictureReference WaterfallReadout::reference(const PicturePoint& point) const {
    return {.column = point.x + static_cast<double>(scrolled_), .frequencyHz = frequency(point.y)};
}

WaterfallReading WaterfallReadout::read(const PicturePoint& point,
                                        const std::optional<PictureReference>& reference) const {
    const double column = std::floor(point.x) + static_cast<double>(scrolled_);
    WaterfallReading reading;
    reading.hasOtherRows = column < static_cast<double>(image_.rowsBegin());
    reading.times = times(column);
    if (!reading.hasOtherRows && std::isfinite(frequency(point.y)))
        reading.frequencyHz = frequency(point.y);
    const bool hasTimes = reading.times == TimeScale::Current && image_.samplesPerColumn() > 0.0;
    if (hasTimes)
        reading.secondsAgo = secondsAgo(column + 1);
    if (reference) {
        // Frequencies stay what they are; times have to be of one scale.
        if (reading.frequencyHz)
            reading.hertzFromReference = *reading.frequencyHz - reference->frequencyHz;
        reading.referenceTimes = times(std::floor(reference->column));
        if (hasTimes && reading.referenceTimes == TimeScale::Current)
            reading.secondsFromReference =
                secondsAgo(reference->column) - secondsAgo(point.x + static_cast<double>(scrolled_));
    }
    readLevel(point, reading);
    return reading;
}

/// From the pixel and the limits it was painted with.
void WaterfallReadout::readLevel(const PicturePoint& point, WaterfallReading& reading) const {
    const std::int32_t x = truncateToInt32(point.x);
    const std::int32_t row = ScrollingBitmap::kHeight - truncateToInt32(std::ceil(point.y));
    const auto levels = image_.levels(scrolled_ + x);
    const auto step = image_.stepAt(row, x);
    if (!levels || !step)
        return;
    constexpr std::int32_t kLastStep = 254;
    const bool isCrossed = levels->maxDB < levels->minDB;
    if (*step == 0) {
        reading.levelDb = static_cast<double>(levels->minDB);
        reading.levelBound = isCrossed ? WaterfallReading::Bound::Lower : WaterfallReading::Bound::Upper;
    } else if (*step >= kLastStep) {
        reading.levelDb = static_cast<double>(levels->maxDB);
        reading.levelBound = isCrossed ? WaterfallReading::Bound::Upper : WaterfallReading::Bound::Lower;
    } else {
        reading.levelDb = LevelScale(levels->minDB, levels->maxDB).decibelsOf(*step);
    }
}

std::optional<DbRange> WaterfallReadout::levelsInView() const {
    const ColumnNumber end = scrolled_ + truncateToInt32(static_cast<double>(bounds_.width));
    std::vector<float> lowest;
    float highest = 0;
    for (ColumnNumber column = std::max(scrolled_, image_.scaleBegin()); column < end; ++column) {
        if (const auto levels = image_.levels(column)) {
            lowest.push_back(levels->lowestDb);
            highest = std::max(highest, levels->highestDb);
        }
    }
    if (lowest.empty() || highest <= 0.0F)
        return std::nullopt;
    const auto quarter = lowest.begin() + static_cast<std::ptrdiff_t>(lowest.size() / 4);
    std::ranges::nth_element(lowest, quarter);
    return DbRange{static_cast<double>(*quarter), static_cast<double>(highest)};
}

std::optional<DbRange> WaterfallReadout::fittingLimits() const {
    const auto levels = levelsInView();
    if (!levels)
        return std::nullopt;
    const double floor = std::floor(levels->lowest);
    return DbRange{floor, std::max(std::ceil(levels->highest), floor + 1.0)};
}

} // namespace sonotrace
