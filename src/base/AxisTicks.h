#pragma once

#include <string>
#include <vector>

namespace sonotrace {

/// What a scale beside a picture runs over, in any unit. `to` may lie below `from`.
struct Axis {
    double from = 0;
    double to = 1;
    bool logarithmic = false; ///< then both are above 0
    bool operator==(const Axis&) const = default;

    /// Whether there is anything to mark: both ends finite and apart, and above 0 on a logarithmic axis.
    bool isDrawable() const;
    /// Value at a place from 0 (`from`) to 1 (`to`), and back. Meaningful on a drawable axis only.
    double valueAt(double place) const;
    double placeOf(double value) const;
};

struct AxisTick {
    double place = 0;  ///< 0 to 1 along the axis
    std::string label; ///< empty for the short ticks in between
};

/// Ticks at round values (1, 2 or 5 times a power of ten; on a logarithmic axis the digits of each decade)
/// with at most about `mostLabels` labels. None when the axis is not drawable.
std::vector<AxisTick> axisTicks(const Axis& axis, int mostLabels);

} // namespace sonotrace
