#include "measure/Calibration.h"

#include "base/PlainNumber.h"

#include <cmath>
#include <numbers>

namespace sonotrace {

namespace {

constexpr double kMostDecibels =
    1000.0; // of a full scale: far beyond all there is, and a power of it is finite
constexpr double kMostLinear = 1e12;

struct Unit {
    std::string_view name;
    LevelUnit linear;
    bool logarithmic;
    double reference; ///< of decibels, in the linear unit
};

/// Indexed by the unit.
constexpr Unit kUnits[] = {{"", LevelUnit::None, false, 1.0},
                           {"V", LevelUnit::V, false, 1.0},
                           {"dBV", LevelUnit::V, true, 1.0},
                           {"dBu", LevelUnit::V, true, 0.77459666924148338}, // a milliwatt in 600 ohms
                           {"Pa", LevelUnit::Pa, false, 1.0},
                           {"dB SPL", LevelUnit::Pa, true, 20e-6}};

const Unit& facts(LevelUnit unit) {
    const auto index = static_cast<std::size_t>(unit);
    return index < std::size(kUnits) ? kUnits[index] : kUnits[0]; // it may come from a file
}

double decibels(double ratio) {
    return 20.0 * std::log10(ratio);
}

double toLinear(LevelUnit unit, double value) {
    return isLogarithmic(unit) ? facts(unit).reference * std::pow(10.0, value / 20.0) : value;
}

} // namespace

std::string_view unitName(LevelUnit unit) {
    return facts(unit).name;
}

bool isLogarithmic(LevelUnit unit) {
    return facts(unit).logarithmic;
}

LevelUnit linearUnit(LevelUnit unit) {
    return facts(unit).linear;
}

std::string_view calibrationTrouble(const Calibration& calibration) {
    if (linearUnit(calibration.unit) == LevelUnit::None)
        return {};
    const double value = calibration.fullScale;
    if (!std::isfinite(value))
        return "full scale must be a number";
    if (isLogarithmic(calibration.unit))
        return std::abs(value) > kMostDecibels ? "full scale is beyond all there is" : "";
    if (value <= 0.0)
        return "full scale must be above 0";
    return value > kMostLinear || value < 1.0 / kMostLinear ? "full scale is beyond all there is" : "";
}

bool isCalibrated(const Calibration& calibration) {
    return linearUnit(calibration.unit) != LevelUnit::None && calibrationTrouble(calibration).empty();
}

std::string calibrationText(const Calibration& calibration) {
    if (!isCalibrated(calibration))
        return "none";
    return "a full-scale sine is " + plainNumber(calibration.fullScale) + " " +
           std::string(unitName(calibration.unit));
}

std::optional<double> levelInUnit(const Calibration& calibration, double levelDbfs) {
    if (!isCalibrated(calibration))
        return std::nullopt;
    if (isLogarithmic(calibration.unit))
        return calibration.fullScale + levelDbfs;
    return calibration.fullScale * std::pow(10.0, levelDbfs / 20.0);
}

std::optional<double> levelDbfs(const Calibration& calibration, double value, LevelUnit unit) {
    if (!isCalibrated(calibration) || linearUnit(unit) != linearUnit(calibration.unit))
        return std::nullopt;
    if (unit == calibration.unit && isLogarithmic(unit))
        return std::isnan(value) ? std::nullopt : std::optional(value - calibration.fullScale);
    const double ratio = toLinear(unit, value) / toLinear(calibration.unit, calibration.fullScale);
    return ratio >= 0.0 ? std::optional(decibels(ratio)) : std::nullopt;
}

std::optional<double> instantaneousValue(const Calibration& calibration, double part) {
    if (!isCalibrated(calibration))
        return std::nullopt;
    return part * std::numbers::sqrt2 * toLinear(calibration.unit, calibration.fullScale);
}

Calibration inUnit(const Calibration& calibration, LevelUnit unit) {
    const bool isRelated = isCalibrated(calibration) && linearUnit(unit) == linearUnit(calibration.unit);
    if (!isRelated || unit == calibration.unit)
        return {unit, calibration.fullScale};
    const double linear = toLinear(calibration.unit, calibration.fullScale);
    return {unit, isLogarithmic(unit) ? decibels(linear / facts(unit).reference) : linear};
}

Calibration calibrationFromLevel(LevelUnit unit, double levelDbfs, double known) {
    return {unit, isLogarithmic(unit) ? known - levelDbfs : known / std::pow(10.0, levelDbfs / 20.0)};
}

} // namespace sonotrace
