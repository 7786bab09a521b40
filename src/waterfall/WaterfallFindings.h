#pragma once

#include "waterfall/WaterfallParameters.h"

namespace sonotrace {

/// What the parameters make of the picture that a user may not expect.
struct WaterfallFindings {
    bool isPaused = false;       ///< by its speed-up: no line is drawn
    bool hasEqualLevels = false; ///< floor and ceiling of the colour scale are the same
    bool hasEqualLimits = false; ///< bottom and top frequency are the same
    bool showsOldRows = false;   ///< those above half the sample rate show what earlier lines have left
};

/// Any thread.
WaterfallFindings findingsOf(const WaterfallParameters& parameters);

} // namespace sonotrace
