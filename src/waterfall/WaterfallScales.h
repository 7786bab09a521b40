#pragma once

#include "waterfall/WaterfallReadout.h"
#include "widgets/RulerPainter.h"

#include <optional>

namespace sonotrace {

/// What stands on the scales beside a waterfall's picture.
struct WaterfallScales {
    RulerScale frequencies; ///< at the left
    RulerScale times;       ///< at the bottom: before the newest column, with the breaks there are
    RulerScale levels;      ///< at the right: of the colours
};

WaterfallScales waterfallScales(const WaterfallReadout& readout,
                                const std::optional<PictureReference>& reference);

} // namespace sonotrace
