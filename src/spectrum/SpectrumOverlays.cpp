#include "spectrum/SpectrumOverlays.h"

#include "base/SampleRate.h"
#include "spectrum/SpectrumTrace.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {
constexpr double kDifferenceLine = kFloorLine + 5 * kTenDecibels; // of -50 dB
}

void SpectrumOverlays::ask(SpectrumOverlay overlay, bool asked) {
    if (std::exchange(asked_[index(overlay)], asked) == asked || asked)
        return;
    if (overlay == SpectrumOverlay::PeakHold)
        hold_.clear();
}

void SpectrumOverlays::setAverage(AverageKind kind, std::int32_t spectra) {
    average_.set(kind, spectra);
    ask(SpectrumOverlay::Average, kind != AverageKind::Off);
}

void SpectrumOverlays::add(std::span<const double> power, double fftSize) {
    fftSize_ = fftSize;
    const auto bins = power.first(static_cast<std::size_t>(fftSize / 2.0) + 1);
    last_.assign(bins.begin(), bins.end());
    average_.add(bins);
    if (isAsked(SpectrumOverlay::PeakHold))
        hold_.add(bins);
}

bool SpectrumOverlays::clear() {
    const bool hadAny = average_.count() > 0 || !hold_.highest().empty();
    average_.clear();
    hold_.clear();
    last_.clear();
    return hadAny;
}

SpectrumOverlays::Trace SpectrumOverlays::current() {
    const auto mean = average_.mean();
    return {mean.empty() ? std::span<const double>(last_) : mean, fftSize_};
}

bool SpectrumOverlays::storeReference() {
    const Trace trace = current();
    reference_.assign(trace.power.begin(), trace.power.end());
    referenceFftSize_ = trace.fftSize;
    return hasReference();
}

SpectrumOverlays::Trace SpectrumOverlays::traceOf(SpectrumOverlay overlay) {
    switch (overlay) {
    case SpectrumOverlay::Average:
        return {average_.mean(), fftSize_};
    case SpectrumOverlay::PeakHold:
        return {hold_.highest(), fftSize_};
    case SpectrumOverlay::Reference:
        return {reference_, referenceFftSize_};
    case SpectrumOverlay::Difference:
        return hasReference() ? current() : Trace{};
    case SpectrumOverlay::Corrected:
        break;
    }
    return responseDb_ ? current() : Trace{};
}

void SpectrumOverlays::columnLevels(const Trace& trace, const PlotRect& bounds,
                                    const SpectrumDisplay& display, std::vector<double>& levels) {
    const SpectrumGeometry geometry = spectrumGeometry(bounds, display, trace.fftSize);
    columnPowers(geometry, display, trace.power, trace.fftSize, levels);
    for (double& level : levels)
        level = std::log(level * geometry.powerScale) - 3.0;
}

void SpectrumOverlays::build(SpectrumOverlay overlay, const PlotRect& bounds, const SpectrumDisplay& display,
                             std::vector<PlotPoint>& line) {
    line.clear();
    if (!isAsked(overlay))
        return;
    const Trace trace = traceOf(overlay);
    if (trace.power.empty())
        return;
    const SpectrumGeometry geometry = spectrumGeometry(bounds, display, trace.fftSize);
    columnLevels(trace, bounds, display, levels_);
    const bool isDifference = overlay == SpectrumOverlay::Difference;
    if (isDifference)
        columnLevels({reference_, referenceFftSize_}, bounds, display, referenceLevels_);
    for (std::size_t column = 0; column < levels_.size(); ++column) {
        const double x = geometry.left + static_cast<double>(column);
        const double frequency = frequencyAt(geometry, display, x);
        if (frequency > kSampleRate / 2.0)
            break;
        double level = levels_[column];
        if (isDifference)
            level = kDifferenceLine + level - referenceLevels_[column];
        else if (overlay == SpectrumOverlay::Corrected)
            level -= responseDb_(frequency) * kTenDecibels / 10.0;
        if (std::isnan(level))
            level = isDifference ? kDifferenceLine : kFloorLine; // no power in both
        line.push_back({x, std::clamp(level * geometry.yScale, geometry.yFloor, bounds.height)});
    }
}

} // namespace sonotrace
