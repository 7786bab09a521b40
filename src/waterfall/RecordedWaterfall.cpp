#include "waterfall/RecordedWaterfall.h"

#include "base/SampleRate.h"
#include "waterfall/WaterfallReadout.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

} // namespace

ColumnPlan planColumns(const RecordedWaterfallSettings& settings, std::optional<std::uint64_t> frames) {
    const std::int32_t length = 1 << settings.log2Length;
    ColumnPlan plan{.speedup = settings.speedup.value_or(1), .slowSeconds = 0, .width = settings.width};
    if (settings.secondsPerColumn) {
        plan.slowSeconds = *settings.secondsPerColumn;
        const double lines =
            std::ceil(length / (plan.slowSeconds * kSampleRate)); // one for a column at least
        plan.speedup =
            settings.speedup.value_or(static_cast<std::int32_t>(std::clamp(lines, 1.0, double(length))));
        return plan;
    }
    const std::uint64_t passes = frames.value_or(0) / static_cast<std::uint64_t>(length);
    if (settings.speedup || passes == 0)
        return plan;
    const auto width = static_cast<std::uint64_t>(settings.width);
    const std::uint64_t linesPerColumn = (passes + width - 1) / width;
    // Columns of equally many lines, and no wider a picture than they fill.
    plan.width = static_cast<std::int32_t>(passes / linesPerColumn);
    if (linesPerColumn > 1) // less a trifle, so that no rounding makes it a line more
        plan.slowSeconds = static_cast<double>(linesPerColumn) * length / kSampleRate * (1.0 - 1e-12);
    plan.speedup = static_cast<std::int32_t>(
        std::clamp<std::uint64_t>(width / passes, 1, static_cast<std::uint64_t>(length)));
    plan.width = std::min(settings.width, plan.width * plan.speedup);
    return plan;
}

RecordedWaterfall::RecordedWaterfall(const RecordedWaterfallSettings& settings,
                                     std::optional<std::uint64_t> frames)
    : settings_(settings), analysis_(setParameters(planColumns(settings, frames)), image_, log_, [] {
          return std::chrono::steady_clock::time_point(); // there is always time for all lines
      }) {}

WaterfallParameters& RecordedWaterfall::setParameters(const ColumnPlan& plan) {
    parameters_.onlyLog2Length = settings_.log2Length;
    parameters_.leastSlowSeconds = 0.0;
    parameters_.waterfallFftLen.store(std::ldexp(1.0, settings_.log2Length), kRelaxed);
    parameters_.fftSizeLog2.store(settings_.log2Length, kRelaxed);
    parameters_.log2SampleLength.store(settings_.log2Length, kRelaxed);
    parameters_.waterfallSpeedup.store(plan.speedup, kRelaxed);
    parameters_.slowSeconds.store(plan.slowSeconds, kRelaxed);
    parameters_.waterfallWindowType.store(settings_.window, kRelaxed);
    parameters_.channel.store(settings_.channel, kRelaxed);
    parameters_.lineMerge.store(settings_.merge, kRelaxed);
    parameters_.waterfallStartFreq.store(settings_.startFreq, kRelaxed);
    parameters_.waterfallEndFreq.store(settings_.endFreq, kRelaxed);
    parameters_.waterfallMinDB.store(settings_.minDB.value_or(0.0F), kRelaxed);
    parameters_.waterfallMaxDB.store(settings_.maxDB.value_or(150.0F), kRelaxed);
    parameters_.colorWaterfallPlot.store(settings_.isColoured ? 1 : 0, kRelaxed);
    image_.setBounds(plan.width, settings_.height);
    return parameters_;
}

std::size_t RecordedWaterfall::framesPerPart() const {
    constexpr std::size_t kLeast = 65536; // much work beside handing it over
    constexpr std::size_t kMost = 1048576;
    if (parameters_.waterfallSpeedup.load(kRelaxed) != 1 || settings_.secondsPerColumn)
        return 0;
    const std::size_t length = std::size_t{1} << settings_.log2Length;
    const std::size_t lines =
        std::max<std::size_t>(1, static_cast<std::size_t>(std::llround(parameters_.slowSamples())) / length);
    const std::size_t column = lines * length;
    const std::size_t columns = (kLeast + column - 1) / column;
    return columns * column <= kMost && columns < static_cast<std::size_t>(image_.bounds().width)
               ? columns * column
               : 0;
}

std::int32_t RecordedWaterfall::paintPart(std::span<const std::int16_t> interleaved) {
    analysis_.forget();
    const ColumnNumber before = image_.scrolled();
    add(interleaved);
    endLine();
    return static_cast<std::int32_t>(image_.scrolled() - before);
}

/// A line waits for more than its samples.
void RecordedWaterfall::endLine() {
    add(std::array<std::int16_t, 2>{});
}

bool RecordedWaterfall::finish() {
    endLine();
    if (!image_.keptColumns().newestScale())
        return false;
    if (!settings_.minDB || !settings_.maxDB)
        fitLimits();
    return true;
}

void RecordedWaterfall::fitLimits() {
    const auto fitting = WaterfallReadout(parameters_, image_, image_.scrolled()).fittingLimits();
    const DbRange limits = fitting.value_or(DbRange{0.0, 1.0}); // of silence
    const float minDB = settings_.minDB.value_or(static_cast<float>(limits.lowest));
    const float maxDB = settings_.maxDB.value_or(static_cast<float>(limits.highest));
    parameters_.waterfallMinDB.store(minDB, kRelaxed);
    parameters_.waterfallMaxDB.store(maxDB, kRelaxed);
    image_.repaint();
}

} // namespace sonotrace
