#include "scope/ScopeView.h"

#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

/// Above so many samples a point the picture is painted column by column.
constexpr std::size_t kDenseTrace = 2;

constexpr int kFastKeys = 10; ///< points a key moves a cursor with Shift

} // namespace

ScopeView::ScopeView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void ScopeView::setModel(const ScopeControls& controls, const ScopeCapture& capture) {
    controls_ = &controls;
    capture_ = &capture;
    redisplay();
}

void ScopeView::redisplay() {
    isNew_ = true;
    update();
}

/// A cursor that moves is no reason to search the triggers again.
void ScopeView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool isOnlyCursor = std::exchange(isCursor_, false) && !isNew_;
    isNew_ = false;
    if (controls_ && !isOnlyCursor)
        trace_.build(*controls_, *capture_, width(), height());
    const std::size_t corners = trace_.line(0).size(); // one more than samples
    painter.save();
    if (corners > kDenseTrace * static_cast<std::size_t>(width()) + 1)
        paintColumns(painter);
    else
        paintLines(painter);
    painter.restore();
    if (areCursorsShown_)
        paintCursors(painter);
    Q_EMIT painted();
}

void ScopeView::paintLines(QPainter& painter) {
    painter.fillRect(rect(), Qt::black);
    painter.translate(0, height());
    painter.scale(1, -1);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::green, ScopeTrace::kLineWidth));
    for (const std::int32_t ch : {0, 1}) {
        line_.clear();
        for (const PlotPoint& point : trace_.line(ch))
            line_.append(QPointF(point.x, point.y));
        painter.drawPolyline(line_);
    }
}

void ScopeView::paintColumns(QPainter& painter) {
    const double scale = painter.deviceTransform().m11();
    painter.scale(1.0 / scale, 1.0 / scale);
    block_.resize(static_cast<std::size_t>(std::ceil(height() * scale)));
    const QImage image(reinterpret_cast<const uchar*>(block_.data()), ScopeColumns::kWidth,
                       static_cast<int>(block_.size()), sizeof(ScopeColumns::Row), QImage::Format_RGB32);
    const std::array lines = {trace_.line(0), trace_.line(1)};
    for (int x = 0; x < width() * scale; x += static_cast<int>(ScopeColumns::kWidth)) {
        columns_.paint(lines, scale, x, block_);
        painter.drawImage(x, 0, image);
    }
}

/// The active one is a whole line while the keys move it.
void ScopeView::paintCursors(QPainter& painter) {
    for (std::size_t i = 0; i < cursors_.size(); ++i) {
        const bool isActive = hasFocus() && i == activeCursor_;
        const double x = std::floor(cursorPlace(i)) + 0.5;
        painter.setPen(QPen(kCursorColours[i], 0, isActive ? Qt::SolidLine : Qt::DashLine));
        painter.drawLine(QPointF(x, 0), QPointF(x, height()));
        const QString name = kCursorNames[i];
        const int room = fontMetrics().horizontalAdvance(name) + 2;
        const double left = x + 2 + room > width() ? x - room : x + 2;
        painter.drawText(QPointF(left, fontMetrics().ascent() + 1), name);
    }
}

void ScopeView::setCursorsShown(bool areShown) {
    areCursorsShown_ = areShown;
    setFocusPolicy(areShown ? Qt::StrongFocus : Qt::NoFocus);
    repaintCursors();
}

void ScopeView::repaintCursors() {
    isCursor_ = true;
    update();
}

void ScopeView::focusChanged(QFocusEvent*) {
    if (areCursorsShown_)
        repaintCursors();
}

void ScopeView::moveCursor(double place) {
    const double most = std::max(width() - 1, 1);
    cursors_[activeCursor_] = std::clamp(place, 0.0, most) / std::max(width(), 1);
    repaintCursors();
}

void ScopeView::mousePressEvent(QMouseEvent* event) {
    if (!areCursorsShown_ || event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    const double x = event->position().x();
    activeCursor_ = std::abs(cursorPlace(0) - x) <= std::abs(cursorPlace(1) - x) ? 0 : 1;
    moveCursor(x);
}

void ScopeView::mouseMoveEvent(QMouseEvent* event) {
    if (areCursorsShown_ && event->buttons() & Qt::LeftButton)
        moveCursor(event->position().x());
}

void ScopeView::keyPressEvent(QKeyEvent* event) {
    const double place = std::floor(cursorPlace(activeCursor_));
    const int points = event->modifiers() & Qt::ShiftModifier ? kFastKeys : 1;
    switch (areCursorsShown_ ? event->key() : 0) {
    case Qt::Key_Left:
        return moveCursor(place - points);
    case Qt::Key_Right:
        return moveCursor(place + points);
    case Qt::Key_Home:
        return moveCursor(0.0);
    case Qt::Key_End:
        return moveCursor(width());
    case Qt::Key_Space:
        activeCursor_ = 1 - activeCursor_;
        return repaintCursors();
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace sonotrace
