#include "spectrum/SpectrumGeometry.h"

#include "base/Numbers.h"
#include "base/SampleRate.h"

#include <cmath>

namespace sonotrace {

namespace {

constexpr double kLn2 = 0.6931471805599453;
constexpr double kLargestView = 1e6;

/// False for NaN, too.
bool isOnScreen(double value) {
    return std::abs(value) <= kLargestView;
}

} // namespace

SpectrumGeometry spectrumGeometry(const PlotRect& bounds, const SpectrumDisplay& display, double fftSize) {
    const bool sane =
        isOnScreen(bounds.x) && isOnScreen(bounds.width) && isOnScreen(bounds.height) && bounds.height >= 0.0;
    const PlotRect view = sane ? bounds : PlotRect{};
    SpectrumGeometry geometry;
    geometry.left = truncateToInt32(view.x + kLeftMargin);
    geometry.right = truncateToInt32(view.x + view.width - kRightMargin);
    geometry.width = geometry.right - geometry.left;
    geometry.yScale = view.height * kScaleOfHeight;
    geometry.yFloor = geometry.yScale * kFloorLine;
    geometry.hzPerPixel = (display.spectrumEndFreq - display.spectrumStartFreq) / geometry.width;
    geometry.logStep = kSpectrumDecades / geometry.width;
    geometry.binHz = kSampleRate / fftSize;
    geometry.powerScale = std::pow(4.0, -(std::log(fftSize) / kLn2 - 9.0));
    return geometry;
}

double frequencyAt(const SpectrumGeometry& geometry, const SpectrumDisplay& display, double x) {
    const double offset = x - geometry.left;
    if (display.logMode != 0)
        return std::pow(10.0, offset * geometry.logStep);
    return display.spectrumStartFreq + offset * geometry.hzPerPixel;
}

double placeOf(const SpectrumGeometry& geometry, const SpectrumDisplay& display, double frequencyHz) {
    if (display.logMode != 0)
        return geometry.left + std::log10(frequencyHz) / geometry.logStep;
    return geometry.left + (frequencyHz - display.spectrumStartFreq) / geometry.hzPerPixel;
}

double plottedDecibels(const SpectrumGeometry& geometry, double y) {
    return -100.0 + (y / geometry.yScale - kFloorLine) * 10.0 / kTenDecibels;
}

} // namespace sonotrace
