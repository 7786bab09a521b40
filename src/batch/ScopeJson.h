#pragma once

#include "scope/ScopeReadings.h"

#include <QJsonObject>

namespace sonotrace {

/// The readings of a block with all digits, levels as parts of full scale; null where one is not defined.
QJsonObject scopeJson(const ScopeBlockReadings& readings);

} // namespace sonotrace
