#pragma once

#include "widgets/Reading.h"

#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QRect>
#include <QString>

#include <vector>

class QPainter;

namespace sonotrace {

inline constexpr int kPageTextSize = 13; ///< points, as the next
inline constexpr int kPageGap = 8;
inline constexpr QColor kPageInk(0x1a, 0x1a, 0x1a);
inline constexpr QColor kPageQuietInk(0x60, 0x60, 0x60);

/// The font of a page's texts. Where glyphs are not on the screen's grid they are spaced as in print.
QFont pageFont(bool isOnGrid);

/// What a page is laid out by, at every scale.
QFontMetrics metricsOfPage();

/// Height in points of a block of texts with its heading, in columns side by side; 0 where there are none.
int blockHeight(const std::vector<Reading>& block, int width, int group);

/// Paints it, with the painter's font.
void paintBlock(QPainter& painter, const QString& heading, const std::vector<Reading>& block,
                const QRect& place, int group);

} // namespace sonotrace
