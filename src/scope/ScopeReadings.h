#pragma once

#include "measure/Calibration.h"
#include "measure/ChannelDelay.h"
#include "measure/SignalReadings.h"
#include "widgets/Reading.h"

#include <array>
#include <optional>
#include <vector>

namespace sonotrace {

/// What is measured of a block.
struct ScopeBlockReadings {
    std::array<SignalReadings, 2> channels;
    std::optional<DelayReading> delay;
};

/// Where a cursor stands.
struct ScopeCursor {
    double milliseconds = 0;                     ///< on the time ruler
    std::array<std::optional<double>, 2> levels; ///< of both channels there, in full scales
};

/// Words the readings of a block, always as many, in what the device is calibrated in. Nothing has been
/// captured yet where `block` is null.
std::vector<Reading> wordedReadings(const ScopeBlockReadings* block, const Calibration& calibration);

/// Words what lies between two cursors.
std::vector<Reading> wordedCursors(const std::array<ScopeCursor, 2>& cursors, const Calibration& calibration);

} // namespace sonotrace
