#pragma once

#include "measure/SpectrumReader.h"

#include <QJsonObject>

namespace sonotrace {

/// The readings of a spectrum with all digits; null where one is not defined. The mains' only where they were
/// asked for.
QJsonObject spectrumJson(const SpectrumReadings& readings, const SpectrumQuestion& question);

} // namespace sonotrace
