#include "widgets/ReportBlock.h"

#include "widgets/Paper.h"
#include "widgets/ReadingColumns.h"

#include <QGuiApplication>
#include <QPainter>

namespace sonotrace {

namespace {
const QColor kRule(0xc8, 0xc8, 0xc8);
}

QFont pageFont(bool isOnGrid) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(kPageTextSize);
    font.setHintingPreference(isOnGrid ? QFont::PreferDefaultHinting : QFont::PreferNoHinting);
    return font;
}

QFontMetrics metricsOfPage() {
    return QFontMetrics(pageFont(false));
}

int blockHeight(const std::vector<Reading>& block, int width, int group) {
    if (block.empty())
        return 0;
    const QFontMetrics metrics = metricsOfPage();
    const ReadingColumns columns(block, metrics, width, group);
    return kPageGap + (1 + columns.rows()) * metrics.lineSpacing();
}

void paintBlock(QPainter& painter, const QString& heading, const std::vector<Reading>& block,
                const QRect& place, int group) {
    if (block.empty())
        return;
    const QFontMetrics metrics = metricsOfPage();
    const int line = metrics.lineSpacing();
    const ReadingColumns columns(block, metrics, place.width(), group);
    painter.fillRect(
        QRectF(place.left(), place.top() + kPageGap / 2.0, place.width(), lineThickness(painter)), kRule);
    QFont bold = painter.font();
    bold.setBold(true);
    painter.save();
    painter.setFont(bold);
    painter.setPen(kPageInk);
    painter.drawText(QRect(place.left(), place.top() + kPageGap, place.width(), line), Qt::AlignLeft,
                     heading);
    painter.restore();
    for (int i = 0; i < static_cast<int>(block.size()); ++i) {
        const Reading& reading = block[static_cast<std::size_t>(i)];
        const ReadingColumns::Place& column = columns.place(i % columns.columns());
        const int top = place.top() + kPageGap + (1 + i / columns.columns()) * line;
        painter.setPen(kPageQuietInk);
        painter.drawText(QRect(place.left() + column.name, top, column.value - column.name, line),
                         Qt::AlignLeft | Qt::TextSingleLine, reading.name);
        painter.setPen(kPageInk);
        const int room = column.end - column.value;
        painter.drawText(QRect(place.left() + column.value, top, room, line),
                         Qt::AlignLeft | Qt::TextSingleLine | Qt::TextDontClip,
                         metrics.horizontalAdvance(reading.value) > room
                             ? metrics.elidedText(reading.value, Qt::ElideRight, room)
                             : reading.value);
    }
}

} // namespace sonotrace
