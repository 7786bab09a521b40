#pragma once

#include <cstdint>

namespace sonotrace {

/// Reads the scope window's controls at the moment of the call. Channel 0 is the first (left), any other
/// number the second. Window thread.
class ScopeControls {
public:
    virtual ~ScopeControls() = default;

    virtual double getRange(std::int32_t ch) const = 0;         ///< gain, see scopeGain()
    virtual double getOffset(std::int32_t ch) const = 0;        ///< points the trace is moved up
    virtual double getTrigger(std::int32_t ch) const = 0;       ///< level in sample units
    virtual bool getTriggerPolarity(std::int32_t ch) const = 0; ///< true: triggers on a falling signal
    virtual bool getInvert(std::int32_t ch) const = 0; ///< true: shown as captured; false: upside down
    virtual double getSweep() const = 0;               ///< samples per trace, see scopeSweep()
};

/// Gain of a range slider, 1 / 10^value. The value counts from -2 to 0, which gives 100 down to 1.
double scopeGain(double rangeSlider);

/// Samples per trace of the time base's slider, 10^(5 - value), not limited.
double scopeSweep(double sweepSlider);

/// Whether a two-state button is set: any of the low 8 bits of its value.
bool isScopeButtonSet(std::int64_t value);

/// Samples drawn per trace: `sweep` as an integer from 10 to 10000.
std::int32_t displayBuflength(double sweep);

} // namespace sonotrace
