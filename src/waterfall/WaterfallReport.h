#pragma once

#include "waterfall/WaterfallReadout.h"
#include "widgets/ReportPicture.h"

#include <optional>

namespace sonotrace {

/// The page of the picture as it is now in view, with its scales; the title is set, and the settings of
/// the picture are put in front of the others. The picture may
/// go on meanwhile and afterwards. Window thread.
ReportPicture waterfallReport(ReportContent content, const WaterfallReadout& readout,
                              const std::optional<PictureReference>& reference = {});

} // namespace sonotrace
