#pragma once

#include "measure/Calibration.h"
#include "scope/ScopeTrace.h"

#include <string>

namespace sonotrace {

/// What a ruler beside a channel's trace shows.
struct ScopeLevelAxis {
    std::string unit;
    ScopeLevels levels; ///< the axis is in that unit
};

/// In volts or pascals, or in per cent of full scale where the device is not calibrated.
ScopeLevelAxis scopeLevelAxis(const ScopeScale& scale, double height, const Calibration& calibration);

} // namespace sonotrace
