#include "measure/AWeighting.h"

#include <cmath>

namespace sonotrace {

double aWeighting(double frequencyHz) {
    const auto response = [](double hz) {
        const double f2 = hz * hz;
        const auto corner = [f2](double cornerHz) { return f2 + cornerHz * cornerHz; };
        constexpr double kLowest = 20.598997;
        constexpr double kLow = 107.65265;
        constexpr double kHigh = 737.86223;
        constexpr double kHighest = 12194.217;
        return f2 * f2 / (corner(kLowest) * std::sqrt(corner(kLow) * corner(kHigh)) * corner(kHighest));
    };
    const double gain = response(frequencyHz) / response(1000.0);
    return gain * gain;
}

} // namespace sonotrace
