#include "app/WindowArrangement.h"

#include <QRect>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <tuple>

namespace sonotrace {

namespace {

using Row = QList<QWidget*>;

QSize frameOf(const QWidget& window) {
    return window.frameGeometry().size() - window.size();
}

QSize leastSize(const QWidget& window) {
    return window.minimumSizeHint() + frameOf(window);
}

/// Of a row: the widths added, the greatest height.
QSize leastSize(const Row& row) {
    QSize least(0, 0);
    for (const QWidget* window : row)
        least = QSize(least.width() + leastSize(*window).width(),
                      std::max(least.height(), leastSize(*window).height()));
    return least;
}

/// Of all rows: the greatest width, the heights added.
QSize leastSize(const QList<Row>& rows) {
    QSize least(0, 0);
    for (const Row& row : rows)
        least =
            QSize(std::max(least.width(), leastSize(row).width()), least.height() + leastSize(row).height());
    return least;
}

/// The rows that lack least room, and of several that lack none the squarest.
QList<Row> rowsFor(const QList<QWidget*>& windows, const QSize& area) {
    QList<QList<Row>> choices;
    for (qsizetype columns = 1; columns <= windows.size(); ++columns) {
        QList<Row> rows;
        for (qsizetype first = 0; first < windows.size(); first += columns)
            rows.append(windows.mid(first, columns));
        choices.append(rows);
    }
    const auto cost = [&](const QList<Row>& rows) {
        const QSize lacking = (leastSize(rows) - area).expandedTo(QSize(0, 0));
        return std::tuple(lacking.width() + lacking.height(), std::abs(rows.first().size() - rows.size()));
    };
    return *std::ranges::min_element(choices, {}, cost);
}

void place(QWidget& window, const QRect& cell, const QRect& area) {
    const QSize size = (cell.size() - frameOf(window)).expandedTo(window.minimumSizeHint());
    window.setWindowState(window.windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen));
    window.resize(size);
    const QSize room = area.size() - size - frameOf(window);
    window.move(area.x() + std::max(0, std::min(cell.x() - area.x(), room.width())),
                area.y() + std::max(0, std::min(cell.y() - area.y(), room.height())));
}

} // namespace

void arrangeWindows(const QList<QWidget*>& windows, const QRect& area) {
    const QList<Row> rows = rowsFor(windows, area.size());
    const int spareHeight = (area.height() - leastSize(rows).height()) / static_cast<int>(rows.size());
    int y = area.y();
    for (const Row& row : rows) {
        const int height = leastSize(row).height() + spareHeight;
        const int spareWidth = (area.width() - leastSize(row).width()) / static_cast<int>(row.size());
        int x = area.x();
        for (QWidget* window : row) {
            const int width = leastSize(*window).width() + spareWidth;
            place(*window, {x, y, width, height}, area);
            x += width;
        }
        y += height;
    }
}

} // namespace sonotrace
