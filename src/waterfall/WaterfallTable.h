#pragma once

#include "base/Setting.h"
#include "waterfall/WaterfallLines.h"

#include <span>
#include <string>
#include <vector>

namespace sonotrace {

/// All that has to be set to get such columns again.
std::vector<Setting> waterfallSettings(const ColumnScale& scale);

/// The lines as a table for other programs: `about` and the settings as comments, then a row a line, oldest
/// first, with its time before the newest in seconds (empty before a gap) and the levels of the picture's
/// rows in dB of the display's own scale. The columns' names are the rows' frequencies in Hz.
std::string waterfallTable(const WaterfallLines& lines, std::span<const Setting> about);

} // namespace sonotrace
