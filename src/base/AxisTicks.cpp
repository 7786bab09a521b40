#include "base/AxisTicks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace sonotrace {

namespace {

constexpr double kMargin = 1e-9; ///< of the axis: an end that is a round value counts as on it

std::string labelOf(double value, int decimals) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", std::clamp(decimals, 0, 9), value);
    return text.data();
}

/// Of a number without more digits than it needs: "0.5", "20", "20k".
std::string shortLabelOf(double value) {
    const bool isThousands = value >= 1000.0;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%g%s", isThousands ? value / 1000.0 : value,
                  isThousands ? "k" : "");
    return text.data();
}

bool isOnAxis(double place) {
    return place >= -kMargin && place <= 1.0 + kMargin;
}

std::vector<AxisTick> linearTicks(const Axis& axis, int mostLabels) {
    const double low = std::min(axis.from, axis.to);
    const double high = std::max(axis.from, axis.to);
    const double wanted = (high - low) / std::max(mostLabels, 1);
    const double decade = std::pow(10.0, std::floor(std::log10(wanted)));
    const double digit = wanted / decade;
    const double step = decade * (digit <= 1.0 ? 1.0 : digit <= 2.0 ? 2.0 : digit <= 5.0 ? 5.0 : 10.0);
    // Far from 0 the values of a narrow axis are all the same number.
    if (!(decade > 0.0) || std::max(std::abs(low), std::abs(high)) / step > 1e12)
        return {};
    const auto decimals = static_cast<int>(-std::floor(std::log10(step) + kMargin));
    constexpr long long kParts = 5; // a step has, one with a short tick each
    std::vector<AxisTick> ticks;
    const double part = step / static_cast<double>(kParts);
    const auto last = static_cast<long long>(std::floor(high / part + kMargin));
    for (auto i = static_cast<long long>(std::ceil(low / part - kMargin)); i <= last; ++i) {
        const double value = part * static_cast<double>(i);
        ticks.push_back(
            {axis.placeOf(value), i % kParts == 0 ? labelOf(i == 0 ? 0.0 : value, decimals) : ""});
    }
    return ticks;
}

std::vector<AxisTick> logarithmicTicks(const Axis& axis, int mostLabels) {
    const double low = std::log10(std::min(axis.from, axis.to));
    const double high = std::log10(std::max(axis.from, axis.to));
    const bool labelsDigits = (high - low) * 3.0 <= mostLabels;
    std::vector<AxisTick> ticks;
    const auto last = static_cast<int>(std::floor(high + kMargin));
    for (auto decade = static_cast<int>(std::floor(low)); decade <= last; ++decade) {
        for (int digit = 1; digit <= 9; ++digit) {
            const double value = digit * std::pow(10.0, decade);
            const double place = axis.placeOf(value);
            if (!isOnAxis(place))
                continue;
            const bool isLabelled = digit == 1 || (labelsDigits && (digit == 2 || digit == 5));
            ticks.push_back({place, isLabelled ? shortLabelOf(value) : ""});
        }
    }
    return ticks;
}

} // namespace

bool Axis::isDrawable() const {
    const bool isFinite = std::isfinite(from) && std::isfinite(to) && std::isfinite(to - from);
    return isFinite && from != to && (!logarithmic || (from > 0.0 && to > 0.0));
}

double Axis::valueAt(double place) const {
    return logarithmic ? from * std::pow(to / from, place) : from + (to - from) * place;
}

double Axis::placeOf(double value) const {
    return logarithmic ? std::log(value / from) / std::log(to / from) : (value - from) / (to - from);
}

std::vector<AxisTick> axisTicks(const Axis& axis, int mostLabels) {
    if (!axis.isDrawable() || mostLabels < 1)
        return {};
    return axis.logarithmic ? logarithmicTicks(axis, mostLabels) : linearTicks(axis, mostLabels);
}

} // namespace sonotrace
