#pragma once

#include <QList>

class QRect;
class QWidget;

namespace sonotrace {

/// Tiles `area` of a screen with the windows, in rows. Each gets the least size it needs and a share of what
/// is left. Where there is not room enough they overlap as little as can be, and stay within the area.
void arrangeWindows(const QList<QWidget*>& windows, const QRect& area);

} // namespace sonotrace
