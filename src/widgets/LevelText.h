#pragma once

#include "measure/Calibration.h"

#include <QString>

#include <optional>

namespace sonotrace {

/// A level in the device's unit, or in dBFS where it has none: "-23.40 dBV", "1.234 V", "12.34 mV". Levels in
/// decibels have two digits after the point, the others four in all.
QString levelText(const Calibration& calibration, double levelDbfs);

/// What a sample is worth, which is given as a part of full scale: in volts, pascals, or per cent where the
/// device is not calibrated.
QString instantaneousText(const Calibration& calibration, double part);

/// The level in dBFS that the user has typed with one of the units: "0.5 V", "500 mV", "94 dB SPL". Nothing
/// where the device is not calibrated for the unit, or the text is something else.
std::optional<double> levelFromText(const Calibration& calibration, const QString& text);

} // namespace sonotrace
