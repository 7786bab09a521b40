#include "waterfall/WaterfallScales.h"

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
const QColor kReferenceColour(0x2a, 0x8c, 0xe0);
const QColor kBreakColour(0xe0, 0x8a, 0x00);

struct TimeUnit {
    const char* name;
    double perSecond;
};

/// The one that keeps the numbers of an axis short.
TimeUnit unitOf(double seconds) {
    if (seconds < 0.5)
        return {"ms", 1000.0};
    if (seconds < 300.0)
        return {"s", 1.0};
    return seconds < 18000.0 ? TimeUnit{"min", 1.0 / 60.0} : TimeUnit{"h", 1.0 / 3600.0};
}

} // namespace

WaterfallScales waterfallScales(const WaterfallReadout& readout,
                                const std::optional<PictureReference>& reference) {
    const WaterfallImage& image = readout.image();
    const WaterfallParameters& parameters = readout.parameters();
    Axis time = readout.timeAxis();
    const TimeUnit unit = unitOf(time.from);
    time.from *= unit.perSecond;
    WaterfallScales scales{
        .frequencies = {.side = RulerSide::Left, .unit = "Hz", .axis = readout.frequencyAxis()},
        .times = {.side = RulerSide::Bottom, .unit = unit.name, .axis = time},
        .levels = {.side = RulerSide::Right,
                   .unit = "dB",
                   .axis = {.from = static_cast<double>(parameters.waterfallMinDB.load(kRelaxed)),
                            .to = static_cast<double>(parameters.waterfallMaxDB.load(kRelaxed))}}};
    const auto mark = [&](ColumnNumber column, const char* text) {
        scales.times.marks.push_back(
            {readout.secondsAgo(static_cast<double>(column)) * unit.perSecond, text, kBreakColour});
    };
    mark(image.scaleBegin(), "‹ other scale");
    if (image.gapEnd() > image.scaleBegin())
        mark(image.gapEnd(), "‹ gap");
    if (reference) {
        scales.times.marks.push_back(
            {readout.secondsAgo(reference->column) * unit.perSecond, "reference", kReferenceColour});
        scales.frequencies.marks.push_back({reference->frequencyHz, {}, kReferenceColour});
    }
    return scales;
}

} // namespace sonotrace
