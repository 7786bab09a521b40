#pragma once

#include "spectrum/SpectrumGeometry.h"

#include <string>
#include <vector>

namespace sonotrace {

/// A text and the lower left corner it is drawn at.
struct GridLabel {
    double x = 0;
    double y = 0;
    std::string text;
};

/// An upright white line, from `top` down to `bottom`.
struct FrequencyLine {
    double x = 0;
    double top = 0;
    double bottom = 0;
    GridLabel label; ///< Hz
};

/// A level red line.
struct DecibelLine {
    double y = 0;
    double left = 0;
    double right = 0;
    GridLabel label;
};

/// The grids of the spectrum as numbers, in the order they are painted in.
struct SpectrumGrid {
    static constexpr double kLineWidth = 1.0;
    static constexpr double kLabelSize = 11.0;     ///< of the bold system font, points
    static constexpr double kLabelKerning = -0.25; ///< points
    static constexpr double kLabelDrop = 18.0; ///< from the floor down to the frequency labels' lower edge
    /// The lowest view, in points, that does not cut the frequency labels.
    static constexpr double kLowestView = kLabelDrop / (kScaleOfHeight * kFloorLine);

    std::vector<FrequencyLine> frequencyLines; ///< painted first
    std::vector<DecibelLine> decibelLines;
};

/// Both grids, or nothing when the grid is switched off.
SpectrumGrid spectrumGrid(const SpectrumGeometry& geometry, const SpectrumDisplay& display);

} // namespace sonotrace
