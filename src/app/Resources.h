#pragma once

#include <QString>

namespace sonotrace {

/// Path of a file among the program's resources, as installed or as built; empty when it is in neither place.
QString resourcePath(const QString& name);

} // namespace sonotrace
