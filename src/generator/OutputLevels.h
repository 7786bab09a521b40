#pragma once

#include "generator/GeneratorBank.h"
#include "generator/SweepParameters.h"
#include "measure/Calibration.h"
#include "widgets/TypedValue.h"

namespace sonotrace {

/// What the volumes of the generators and of the sweep come to at the output. All that are on share the full
/// scale, which is known where the output is calibrated. Window thread.
class OutputLevels {
public:
    /// The arguments outlive the levels.
    OutputLevels(const GeneratorBank& bank, const SweepParameters& sweep) : bank_(bank), sweep_(sweep) {}

    void setCalibration(const Calibration& calibration) { calibration_ = calibration; }

    /// How a volume of the voice with this switch is typed: in per cent, in decibels, and in the output's
    /// unit as the RMS value of a sine. `enabled` and the levels outlive the notation.
    ValueNotation notation(const std::atomic<std::int32_t>& enabled) const;

private:
    int voices(const std::atomic<std::int32_t>& enabled) const;

    const GeneratorBank& bank_;
    const SweepParameters& sweep_;
    Calibration calibration_;
};

} // namespace sonotrace
