#pragma once

#include "base/MeasurementOrigin.h"
#include "base/Setting.h"
#include "measure/Calibration.h"
#include "scope/ScopeCapture.h"
#include "scope/ScopeTrace.h"

#include <span>
#include <string>

namespace sonotrace {

/// The blocks that the traces are drawn of as a table, a row per sample as it was captured: its time on the
/// time ruler of the first channel, and both channels in volts or pascals or, where the device is not
/// calibrated, as parts of full scale. While a channel has never triggered it is the last block that was
/// captured. The same bytes in every locale.
std::string scopeTable(const MeasurementOrigin& origin, std::span<const Setting> settings,
                       const ScopeTrace& trace, const ScopeCapture& capture, const Calibration& calibration);

} // namespace sonotrace
