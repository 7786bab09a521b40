#pragma once

#include <QString>

class QWidget;

namespace sonotrace {

/// Shows what the program is, and what a report of a fault should hold. Does not wait for the user.
void showAbout(QWidget& window, const QString& soundSystem, const QString& device);

} // namespace sonotrace
