#pragma once

#include "base/DeferredLog.h"

namespace sonotrace {

/// Extremes of one line. The start values are what a line logs that could not be painted.
struct LineStatistics {
    double minSum = 9999999.0; ///< smallest magnitude
    double maxSum = 0.0;       ///< largest magnitude
    double minV = 999.0;       ///< lowest level
    double maxV = 0.0;         ///< highest level

    /// Not a number is no extreme.
    void addMagnitude(double magnitude) {
        minSum = magnitude < minSum ? magnitude : minSum;
        maxSum = magnitude > maxSum ? magnitude : maxSum;
    }
    void addLevel(double level) {
        minV = level < minV ? level : minV;
        maxV = level > maxV ? level : maxV;
    }

    LogRecord logRecord() const;
};

} // namespace sonotrace
