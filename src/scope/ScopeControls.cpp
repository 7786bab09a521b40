#include "scope/ScopeControls.h"

#include "base/Numbers.h"

#include <algorithm>
#include <cmath>

namespace sonotrace {

double scopeGain(double rangeSlider) {
    double exponent = 0.0;
    if (rangeSlider <= 0.0) // not NaN
        exponent = std::max(rangeSlider, -2.0);
    return 1.0 / std::pow(10.0, exponent);
}

double scopeSweep(double sweepSlider) {
    return std::pow(10.0, 5.0 - sweepSlider);
}

bool isScopeButtonSet(std::int64_t value) {
    return (value & 0xFF) != 0;
}

std::int32_t displayBuflength(double sweep) {
    return std::clamp(truncateToInt32(sweep), 10, 10000);
}

} // namespace sonotrace
