#pragma once

#include <algorithm>
#include <cmath>

namespace sonotrace {

inline constexpr double kLevelScaleFloor = -60.0; ///< dB at the left end of a level meter

/// Level of a linear peak in decibels of full scale; silence and nonsense give minus infinity.
inline double decibelsOfPeak(double peak) {
    return peak > 0.0 ? 20.0 * std::log10(peak) : -HUGE_VAL;
}

/// Position of a level on the meter, from 0 (the floor and below) to 1 (full scale and above).
inline double levelPosition(double decibels) {
    return std::clamp(1.0 - decibels / kLevelScaleFloor, 0.0, 1.0);
}

} // namespace sonotrace
