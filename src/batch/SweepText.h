#pragma once

#include "generator/SweepParameters.h"

#include <string_view>

namespace sonotrace {

/// Sets a sweep as it is typed, "START,END,RATE[,log][,reverse][,once]", and has it begin at START with full
/// volume on both channels. Frequencies are in Hz, 0 to 22050; the rate is the sweep window's, above 0.
/// Throws a CommandError for every other text.
void setSweep(SweepParameters& sweep, std::string_view text);

} // namespace sonotrace
