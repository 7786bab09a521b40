#pragma once

#include <QList>

class QRect;
class QWidget;

namespace sonotrace {

/// Tiles `area` of a screen with the windows, in rows. Windows that cannot be made so small overlap as little
/// as can be, and stay within the area.
void arrangeWindows(const QList<QWidget*>& windows, const QRect& area);

} // namespace sonotrace
