#pragma once

#include <QImage>

namespace sonotrace {

/// The waterfall's colours, or greys, from the loudest at the top to the quietest: one pixel a step.
QImage colorSteps(bool isColoured);

} // namespace sonotrace
