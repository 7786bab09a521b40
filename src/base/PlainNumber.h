#pragma once

#include <string>

namespace sonotrace {

/// The shortest text that reads back as the same number, with a point in every locale and never with an
/// exponent: "5000", "0.1".
std::string plainNumber(double number);

/// With so many digits (0 to 17) behind the point.
std::string plainNumber(double number, int decimals);

} // namespace sonotrace
