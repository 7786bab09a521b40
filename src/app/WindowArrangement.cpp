#include "app/WindowArrangement.h"

#include <QRect>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <tuple>

namespace sonotrace {

namespace {

QSize leastSize(const QWidget& window) {
    return window.minimumSizeHint() + window.frameGeometry().size() - window.size();
}

/// The number of columns with which the windows lack least room; the squarer tiling where several lack none.
int columnsFor(const QList<QWidget*>& windows, const QSize& area) {
    QSize least;
    for (const QWidget* window : windows)
        least = least.expandedTo(leastSize(*window));
    const int count = static_cast<int>(windows.size());
    const auto cost = [&](int columns) {
        const int rows = (count + columns - 1) / columns;
        const int lacking = std::max(0, least.width() * columns - area.width()) +
                            std::max(0, least.height() * rows - area.height());
        return std::tuple(lacking, std::abs(columns - rows), -columns);
    };
    int best = 1;
    for (int columns = 2; columns <= count; ++columns)
        best = cost(columns) < cost(best) ? columns : best;
    return best;
}

void place(QWidget& window, const QRect& cell, const QRect& area) {
    const QSize frame = window.frameGeometry().size() - window.size();
    const QSize size = (cell.size() - frame).expandedTo(window.minimumSizeHint());
    window.setWindowState(window.windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen));
    window.resize(size);
    const int right = area.x() + area.width() - size.width() - frame.width();
    const int bottom = area.y() + area.height() - size.height() - frame.height();
    window.move(std::max(area.x(), std::min(cell.x(), right)),
                std::max(area.y(), std::min(cell.y(), bottom)));
}

} // namespace

void arrangeWindows(const QList<QWidget*>& windows, const QRect& area) {
    const int count = static_cast<int>(windows.size());
    const int columns = columnsFor(windows, area.size());
    const int rows = (count + columns - 1) / columns;
    for (int i = 0; i < count; ++i) {
        const int row = i / columns;
        const int inRow = std::min(columns, count - row * columns);
        const int width = area.width() / inRow;
        const int height = area.height() / rows;
        place(*windows[i], {area.x() + i % columns * width, area.y() + row * height, width, height}, area);
    }
}

} // namespace sonotrace
