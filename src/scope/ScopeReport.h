#pragma once

#include "measure/Calibration.h"
#include "scope/ScopePainter.h"
#include "widgets/ReportPicture.h"

#include <array>
#include <optional>

namespace sonotrace {

/// What the plot of a page shows.
struct ScopePicture {
    ScopeTrace trace; ///< after its search, for a view of any size
    std::array<double, 2> offsets{};
    double offsetHeight = 0; ///< of the view that the offsets are meant for; 0: of each
    Calibration calibration = {};
    std::optional<ScopeCursorPlaces> cursors = {};
};

/// The page of an oscilloscope's picture; its title is set. Window thread.
ReportPicture scopeReport(ReportContent content, ScopePicture shown);

} // namespace sonotrace
