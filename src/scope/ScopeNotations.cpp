#include "scope/ScopeNotations.h"

#include "base/SampleRate.h"
#include "scope/ScopeControls.h"
#include "widgets/NumberText.h"

#include <cmath>
#include <optional>

namespace sonotrace {

namespace {

/// What is typed is still the same number of samples, truncated, after it has been kept in single precision.
constexpr double kSampleMargin = 0.01;

} // namespace

ValueNotation gainNotation() {
    const auto write = [](double slider) { return QString::number(scopeGain(slider)); };
    const auto read = [](const QString& text) -> std::optional<double> {
        const auto gain = numberAndUnit(QString(text).remove(u'×'));
        if (!gain || !gain->unit.isEmpty() || gain->number <= 0.0)
            return std::nullopt;
        return -std::log10(gain->number);
    };
    return {write, read};
}

ValueNotation sweepNotation() {
    const auto write = [](double slider) {
        return QString("%1 samples").arg(displayBuflength(scopeSweep(slider)));
    };
    const auto read = [](const QString& text) -> std::optional<double> {
        const auto length = numberAndUnit(text);
        if (!length || length->number <= 0.0)
            return std::nullopt;
        const bool isTime = length->unit == "ms";
        if (!isTime && !length->unit.isEmpty() && length->unit != "samples")
            return std::nullopt;
        const double samples = isTime ? std::round(length->number * kSampleRate / 1000.0) : length->number;
        return 5.0 - std::log10(samples + kSampleMargin);
    };
    return {write, read};
}

} // namespace sonotrace
