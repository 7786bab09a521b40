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

void SpectrumOverlays::add(const SpectrumBins& spectrum) {
    fftSize_ = spectrum.fftSize;
    windowSum_ = spectrum.windowSum;
    const auto bins = spectrum.power;
    last_.assign(bins.begin(), bins.end());
    average_.add(bins);
    if (isAsked(SpectrumOverlay::PeakHold))
        hold_.add(bins);
}

void SpectrumOverlays::take(std::span<const double> mean, std::span<const double> highest) {
    setAverage(AverageKind::Exponential, 1); // of one, which it is exactly
    ask(SpectrumOverlay::PeakHold, true);
    average_.clear();
    hold_.clear();
    average_.add(mean);
    hold_.add(highest);
}

bool SpectrumOverlays::clear() {
    const bool hadAny = average_.count() > 0 || !hold_.highest().empty();
    average_.clear();
    hold_.clear();
    last_.clear();
    return hadAny;
}

SpectrumBins SpectrumOverlays::current() {
    const auto mean = average_.mean();
    return {mean.empty() ? std::span<const double>(last_) : mean, fftSize_, windowSum_};
}

bool SpectrumOverlays::storeReference() {
    const SpectrumBins trace = current();
    reference_.assign(trace.power.begin(), trace.power.end());
    referenceFftSize_ = trace.fftSize;
    referenceWindowSum_ = trace.windowSum;
    return hasReference();
}

SpectrumBins SpectrumOverlays::bins(SpectrumOverlay overlay) {
    if (!isAsked(overlay))
        return {};
    switch (overlay) {
    case SpectrumOverlay::Average:
        return {average_.mean(), fftSize_, windowSum_};
    case SpectrumOverlay::PeakHold:
        return {hold_.highest(), fftSize_, windowSum_};
    case SpectrumOverlay::Reference:
        return reference();
    case SpectrumOverlay::Difference:
        return hasReference() ? current() : SpectrumBins{};
    case SpectrumOverlay::Corrected:
        break;
    }
    return responseDb_ ? current() : SpectrumBins{};
}

void SpectrumOverlays::columnLevels(const SpectrumBins& trace, const PlotRect& bounds,
                                    const SpectrumDisplay& display, std::vector<double>& levels) {
    const SpectrumGeometry geometry = spectrumGeometry(bounds, display, trace.fftSize);
    columnPowers(geometry, display, trace.power, trace.fftSize, levels);
    for (double& level : levels)
        level = std::log(level * geometry.powerScale) - 3.0;
}

void SpectrumOverlays::build(SpectrumOverlay overlay, const PlotRect& bounds, const SpectrumDisplay& display,
                             std::vector<PlotPoint>& line) {
    line.clear();
    const SpectrumBins trace = bins(overlay);
    if (trace.isEmpty())
        return;
    const SpectrumGeometry geometry = spectrumGeometry(bounds, display, trace.fftSize);
    columnLevels(trace, bounds, display, levels_);
    const bool isDifference = overlay == SpectrumOverlay::Difference;
    if (isDifference)
        columnLevels(reference(), bounds, display, referenceLevels_);
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
