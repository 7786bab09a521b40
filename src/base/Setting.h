#pragma once

#include <string>

namespace sonotrace {

/// What a control stands at, worded for a reader: "FFT size", "16384".
struct Setting {
    std::string name;
    std::string value; ///< with its unit
    bool operator==(const Setting&) const = default;
};

} // namespace sonotrace
