#pragma once

#include "base/Setting.h"
#include "measure/Calibration.h"
#include "scope/ScopeControls.h"

#include <vector>

namespace sonotrace {

/// All that has to be known to measure a block again, in words.
std::vector<Setting> worded(const ScopeControls& controls, const Calibration& calibration);

} // namespace sonotrace
