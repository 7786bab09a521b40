#pragma once

#include "base/Setting.h"

#include <string>
#include <vector>

namespace sonotrace {

/// Where a measurement comes from, for those who read it later.
struct MeasurementOrigin {
    std::string program; ///< with its version
    std::string time;    ///< ISO 8601, with the zone
    std::string source;  ///< device or file
};

/// The same as the first lines of a table: `what` was measured, by which program, when, of what.
inline std::vector<Setting> originLines(const std::string& what, const MeasurementOrigin& origin) {
    return {
        {"Measurement", what}, {"Program", origin.program}, {"Time", origin.time}, {"Source", origin.source}};
}

} // namespace sonotrace
