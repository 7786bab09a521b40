#pragma once

#include "waterfall/WaterfallReadout.h"
#include "widgets/ReportPicture.h"

#include <optional>

namespace sonotrace {

/// The page of the picture as it is now in view, with its scales; title and settings are set. The picture may
/// go on meanwhile and afterwards. Window thread.
ReportPicture waterfallReport(ReportContent content, const WaterfallReadout& readout,
                              const std::optional<PictureReference>& reference = {});

} // namespace sonotrace
