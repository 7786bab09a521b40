#pragma once

#include "widgets/TypedValue.h"

namespace sonotrace {

/// How the gain of a range slider and the samples of the time base's slider are written and typed; of the
/// latter also the milliseconds are taken.
ValueNotation gainNotation();
ValueNotation sweepNotation();

} // namespace sonotrace
