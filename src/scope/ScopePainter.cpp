#include "scope/ScopePainter.h"

#include "widgets/Paper.h"

#include <QImage>
#include <QPainter>

#include <cmath>

namespace sonotrace {

namespace {
/// Above so many samples a point the picture is painted column by column.
constexpr std::size_t kDenseTrace = 2;
} // namespace

void ScopePainter::paint(QPainter& painter, const QSize& size, const ScopeTrace& trace) {
    const std::size_t corners = trace.line(0).size(); // one more than samples
    painter.save();
    if (corners > kDenseTrace * static_cast<std::size_t>(size.width()) + 1 && !isOnPaper(painter))
        paintColumns(painter, size, trace);
    else
        paintLines(painter, size, trace);
    painter.restore();
}

void ScopePainter::paintLines(QPainter& painter, const QSize& size, const ScopeTrace& trace) {
    painter.fillRect(QRect(QPoint(0, 0), size), Qt::black);
    painter.translate(0, size.height());
    painter.scale(1, -1);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::green, ScopeTrace::kLineWidth));
    for (const std::int32_t ch : {0, 1}) {
        line_.clear();
        for (const PlotPoint& point : trace.line(ch))
            line_.append(QPointF(point.x, point.y));
        painter.drawPolyline(line_);
    }
}

void ScopePainter::paintColumns(QPainter& painter, const QSize& size, const ScopeTrace& trace) {
    const double scale = painter.deviceTransform().m11();
    painter.scale(1.0 / scale, 1.0 / scale);
    block_.resize(static_cast<std::size_t>(std::ceil(size.height() * scale)));
    const QImage image(reinterpret_cast<const uchar*>(block_.data()), ScopeColumns::kWidth,
                       static_cast<int>(block_.size()), sizeof(ScopeColumns::Row), QImage::Format_RGB32);
    const std::array lines = {trace.line(0), trace.line(1)};
    for (int x = 0; x < size.width() * scale; x += static_cast<int>(ScopeColumns::kWidth)) {
        columns_.paint(lines, scale, x, block_);
        painter.drawImage(x, 0, image);
    }
}

void ScopePainter::paintCursors(QPainter& painter, const QSize& size, const ScopeCursorPlaces& places,
                                std::optional<std::size_t> active, double thickness) const {
    for (std::size_t i = 0; i < places.size(); ++i) {
        const bool isActive = active == i;
        const double x = std::floor(places[i] * size.width()) + 0.5;
        painter.setPen(QPen(kScopeCursorColours[i], thickness, isActive ? Qt::SolidLine : Qt::DashLine));
        painter.drawLine(QPointF(x, 0), QPointF(x, size.height()));
        const QString name = kScopeCursorNames[i];
        const int room = painter.fontMetrics().horizontalAdvance(name) + 2;
        const double left = x + 2 + room > size.width() ? x - room : x + 2;
        painter.drawText(QPointF(left, painter.fontMetrics().ascent() + 1), name);
    }
}

} // namespace sonotrace
