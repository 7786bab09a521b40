#pragma once

#include <array>
#include <cstdint>

namespace sonotrace {

/// What the scope window's controls say; of two values the first is the first (left) channel's. Any values
/// do. Window thread.
struct ScopeControls {
    std::array<double, 2> range{1.0, 1.0}; ///< gain, see scopeGain()
    std::array<double, 2> offset{};        ///< points the trace is moved up
    std::array<double, 2> trigger{};       ///< level in sample units
    std::array<bool, 2> triggerPolarity{}; ///< true: triggers on a falling signal
    std::array<bool, 2> invert{};          ///< true: shown as captured; false: upside down
    double sweep = 10.0;                   ///< samples per trace, see scopeSweep()
    std::int32_t steady = 0; ///< 1 or 2: both traces are drawn around a crossing of that channel
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
