#include "spectrum/SpectrumGeometry.h"

#include "base/Numbers.h"
#include "base/SampleRate.h"

#include <cmath>

namespace sonotrace {

namespace {

constexpr double kLeftMargin = 50.0;
constexpr double kRightMargin = 80.0;
constexpr double kDecades = 4.3;
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
    geometry.logStep = kDecades / geometry.width;
    geometry.binHz = kSampleRate / fftSize;
    geometry.powerScale = std::pow(4.0, -(std::log(fftSize) / kLn2 - 9.0));
    return geometry;
}

} // namespace sonotrace
