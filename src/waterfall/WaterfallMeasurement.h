#pragma once

#include "waterfall/WaterfallParameters.h"

#include <string>

namespace sonotrace {

/// What a left click has measured.
struct WaterfallClick {
    float frequency; ///< Hz under the pointer
    float deltaX;    ///< points right of the last right click
};

/// Turns clicks into a frequency and a time. Window thread.
class WaterfallMeasurement {
public:
    explicit WaterfallMeasurement(const WaterfallParameters& parameters) : parameters_(parameters) {}

    /// Sets the time reference. x and y in points from the view's bottom-left corner.
    void rightMouseDown(double x, double y);

    /// Measures at a point of a view of `height` points. Before the view has a height the result is not
    /// finite.
    WaterfallClick mouseDown(double x, double y, double height) const;

    /// The result as text, "%d Hz  %g mSec": columns enter the picture at speedup * (44100 / N) a second,
    /// or as slow columns. What is not finite is said in words.
    std::string setMouseHz(float frequency, float deltaX) const;

private:
    const WaterfallParameters& parameters_;
    double lastRightClickX_ = 0.0;
};

} // namespace sonotrace
