#pragma once

#include <QWidget>

namespace sonotrace {

/// Gives a control that no layout file holds its name, and says what it is and does.
inline void introduce(QWidget& control, const QString& name, const QString& title, const QString& tip) {
    control.setObjectName(name);
    control.setAccessibleName(title);
    control.setAccessibleDescription(tip);
    control.setToolTip(tip);
}

} // namespace sonotrace
