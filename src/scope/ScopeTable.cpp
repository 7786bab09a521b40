#include "scope/ScopeTable.h"

#include "base/CsvText.h"
#include "base/PlainNumber.h"
#include "base/SampleRate.h"

#include <algorithm>
#include <array>
#include <limits>

namespace sonotrace {

namespace {

constexpr int kTimeDecimals = 9;
constexpr int kLevelDecimals = 9;
constexpr double kFullScale = 32768.0;
constexpr std::size_t kRowLength = 45; // characters, about
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

ScopeShown shownBlock(const ScopeTrace& trace, const ScopeCapture& capture, std::int32_t ch) {
    const ScopeShown shown = trace.shown(ch);
    return shown.raw.empty() ? ScopeShown{capture.raw(ch), capture.blocks(), 0.0} : shown;
}

double levelOf(const ScopeShown& shown, std::size_t sample, const Calibration& calibration) {
    if (sample >= shown.raw.size())
        return kNone;
    const double part = shown.raw[sample] / kFullScale;
    return instantaneousValue(calibration, part).value_or(part);
}

const char* unitSuffix(const Calibration& calibration) {
    if (!isCalibrated(calibration))
        return "_fs";
    return linearUnit(calibration.unit) == LevelUnit::V ? "_v" : "_pa";
}

} // namespace

std::string scopeTable(const MeasurementOrigin& origin, std::span<const Setting> settings,
                       const ScopeTrace& trace, const ScopeCapture& capture, const Calibration& calibration) {
    const std::array shown = {shownBlock(trace, capture, 0), shownBlock(trace, capture, 1)};
    const auto timeOf = [&](double sample) { return (sample - shown[0].start) / kSampleRate; };
    CsvText csv;
    csv.comments(originLines("oscilloscope", origin));
    csv.comments(settings);
    if (!isCalibrated(calibration))
        csv.comment("Levels", "1 is full scale, a sample of 32768");
    csv.comment("Time 0 of the right trace", plainNumber(timeOf(shown[1].start), kTimeDecimals) + " s");
    if (shown[0].block != shown[1].block)
        csv.comment("Blocks", "left and right were not captured at the same time: their triggers held them");
    const std::string suffix = unitSuffix(calibration);
    const std::array<std::string, 3> names = {"time_s", "left" + suffix, "right" + suffix};
    csv.columns(names);
    const std::size_t rows = std::max(shown[0].raw.size(), shown[1].raw.size());
    csv.reserve(rows * kRowLength);
    for (std::size_t sample = 0; sample < rows; ++sample) {
        csv.value(timeOf(static_cast<double>(sample)), kTimeDecimals);
        for (const ScopeShown& channel : shown)
            csv.value(levelOf(channel, sample, calibration), kLevelDecimals);
        csv.endRow();
    }
    return csv.text();
}

} // namespace sonotrace
