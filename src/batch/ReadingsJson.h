#pragma once

#include "measure/SpectrumReader.h"

#include <QJsonObject>

namespace sonotrace {

/// The readings with all their digits, under the names of SpectrumReadings; null where one is not defined.
QJsonObject jsonOf(const SpectrumReadings& readings);

/// Null where it is not defined or not finite.
QJsonValue jsonOf(const std::optional<double>& number);

} // namespace sonotrace
