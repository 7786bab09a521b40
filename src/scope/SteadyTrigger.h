#pragma once

#include "scope/TriggerSearch.h"

#include <cstdint>
#include <optional>
#include <span>

namespace sonotrace {

/// Where, from sample `from` to `to`, the band-limited signal passes the level, to a thousandth of a sample:
/// the first crossing that is about as steep as the steepest, so that the picture of a signal that repeats
/// stands still even if it passes the level several times in each period. A crossing counts where the signal
/// has been away from the level by a twentieth of its peak to peak (or by half of what there is on that
/// side): noise on a slow edge does not trigger. Nothing for a level that is not passed, or NaN.
std::optional<double> findSteadyCrossing(std::span<const std::int16_t> samples,
                                         const TriggerCondition& condition, double from, double to);

} // namespace sonotrace
