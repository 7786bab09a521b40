#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sonotrace {

/// What levels are given in, once it is known what full scale is. The order is what preferences keep.
enum class LevelUnit { None, V, dBV, dBu, Pa, dBSPL };

inline constexpr LevelUnit kLevelUnits[] = {LevelUnit::None, LevelUnit::V,  LevelUnit::dBV,
                                            LevelUnit::dBu,  LevelUnit::Pa, LevelUnit::dBSPL};

/// What a device's samples stand for. All values may be anything: what makes no sense is no calibration.
struct Calibration {
    LevelUnit unit = LevelUnit::None;
    double fullScale = 0; ///< RMS value of a full-scale sine, in the unit

    bool operator==(const Calibration&) const = default;
};

/// "dBV"; nothing for None.
std::string_view unitName(LevelUnit unit);

/// Decibels to a reference, unlike volts and pascals.
bool isLogarithmic(LevelUnit unit);

/// Volts for a calibration in dBV or dBu, pascals for one in dB SPL: what a single sample is given in.
LevelUnit linearUnit(LevelUnit unit);

/// What is wrong with a full scale, in words; empty when nothing is, or no unit is chosen.
std::string_view calibrationTrouble(const Calibration& calibration);

bool isCalibrated(const Calibration& calibration);

/// What full scale is, in words: "a full-scale sine is 1.2345 V".
std::string calibrationText(const Calibration& calibration);

/// The value in the unit of a level, 0 dBFS being a full-scale sine; nothing where the device is not
/// calibrated.
std::optional<double> levelInUnit(const Calibration& calibration, double levelDbfs);

/// The other way round, for a value in any unit of what the device is calibrated in: nothing for pascals
/// where it is volts, for what is below nothing, and where the device is not calibrated. 0 V is minus
/// infinity.
std::optional<double> levelDbfs(const Calibration& calibration, double value, LevelUnit unit);

/// The volts or pascals of a sample, which is given as a part of full scale: sample / 32768.
std::optional<double> instantaneousValue(const Calibration& calibration, double part);

/// The same calibration in another unit of the same kind; the bare number in every other.
Calibration inUnit(const Calibration& calibration, LevelUnit unit);

/// The calibration that makes a level `known`, which is in the unit.
Calibration calibrationFromLevel(LevelUnit unit, double levelDbfs, double known);

} // namespace sonotrace
