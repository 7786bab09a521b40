#pragma once

namespace sonotrace {

/// Shapes of a plot in points, as a view paints them: y grows upward from the bottom edge.
struct PlotPoint {
    double x = 0;
    double y = 0;
    bool operator==(const PlotPoint&) const = default;
};

/// A rectangle by its lower left corner.
struct PlotRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    bool operator==(const PlotRect&) const = default;
};

} // namespace sonotrace
