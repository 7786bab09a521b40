#pragma once

#include "base/AxisTicks.h"
#include "spectrum/SpectrumGeometry.h"

#include <cmath>

namespace sonotrace {

/// Hz over the plot's width; on both sides of it lie the margins.
inline Axis frequencyAxis(const SpectrumDisplay& display) {
    if (display.logMode != 0)
        return {1.0, std::pow(10.0, kSpectrumDecades), true};
    return {display.spectrumStartFreq, display.spectrumEndFreq};
}

/// The grid's decibels, from the plot's floor to the upper edge of a face of that height.
inline Axis levelAxis(const SpectrumGeometry& geometry, double height) {
    return {plottedDecibels(geometry, geometry.yFloor), plottedDecibels(geometry, height)};
}

} // namespace sonotrace
