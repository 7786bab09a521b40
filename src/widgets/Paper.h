#pragma once

#include <QPaintEngine>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace sonotrace {

/// Whether shapes are kept as shapes, whatever size they are looked at in: then pixels are none of ours.
inline bool isOnPaper(const QPainter& painter) {
    return painter.paintEngine()->type() == QPaintEngine::Pdf;
}

/// Thickness in points, a point or nearly, of lines that are filled as rectangles: whole pixels, so that all
/// are alike and none is lost.
inline double lineThickness(const QPainter& painter) {
    const double scale = painter.deviceTransform().m11();
    return isOnPaper(painter) || !(scale > 0.0) ? 1.0 : std::max(1.0, std::floor(scale)) / scale;
}

} // namespace sonotrace
