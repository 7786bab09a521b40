#pragma once

#include "base/PlotShapes.h"

#include <cstdint>

namespace sonotrace {

/// How the spectrum is shown; set by the window's controls. Any values do.
struct SpectrumDisplay {
    double spectrumStartFreq = 0;  ///< Hz at the left edge of the linear axis
    double spectrumEndFreq = 5000; ///< Hz at its right edge
    std::int32_t fillMode = 0;     ///< 1: bars instead of a line
    std::int32_t logMode = 0;      ///< 1: logarithmic axis, 1 Hz to 10^4.3 Hz whatever the frequencies say
    std::int32_t gridMode = 0;     ///< 1: both grids with their labels
    float gridBrightness = 0;      ///< grey of the labels, 0 to 1
    bool operator==(const SpectrumDisplay&) const = default;
};

inline constexpr double kScaleOfHeight =
    0.0405;                                 ///< a unit of natural logarithm of power, of the view's height
inline constexpr double kTenDecibels = 2.3; ///< ten decibels, in such units: ln(10), near enough
inline constexpr double kFloorLine = 1.67;  ///< height of the lowest decibel line, in such units

inline constexpr double kSpectrumDecades = 4.3; ///< of the logarithmic axis, from 1 Hz
inline constexpr double kLeftMargin = 50.0;     ///< points beside the plot
inline constexpr double kRightMargin = 80.0;

/// Where the plot lies in its view and what a point of it means. Margins are left for the decibel labels
/// (left), the last frequency label (right) and the frequency labels (below the floor).
struct SpectrumGeometry {
    std::int32_t left = 0;  ///< first column
    std::int32_t right = 0; ///< behind the last column
    std::int32_t width = 0; ///< columns; 0 or negative in a view too narrow for a plot
    double yScale = 0;      ///< points per unit of natural logarithm of power
    double yFloor = 0;      ///< height of the lowest decibel line
    double hzPerPixel = 0;  ///< linear axis; not finite when width is 0
    double logStep = 0;     ///< logarithmic axis: decades per column; not finite when width is 0
    double binHz = 0;       ///< from bin to bin
    double powerScale = 0;  ///< makes a tone equally high with all FFT sizes: (512 / N)²
};

/// `bounds` is the view's rectangle; its y does not count. One that no screen has (not finite, beyond a
/// million points, negative height) is taken for an empty one. `fftSize` is the size chosen now, which may be
/// newer than the spectrum.
SpectrumGeometry spectrumGeometry(const PlotRect& bounds, const SpectrumDisplay& display, double fftSize);

/// Frequency in Hz at a place between the plot's left (geometry.left) and right, and back. Not finite when
/// the plot has no width or shows no range.
double frequencyAt(const SpectrumGeometry& geometry, const SpectrumDisplay& display, double x);
double placeOf(const SpectrumGeometry& geometry, const SpectrumDisplay& display, double frequencyHz);

/// The decibels that the grid's labels give to a height.
double plottedDecibels(const SpectrumGeometry& geometry, double y);

} // namespace sonotrace
