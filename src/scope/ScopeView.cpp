#include "scope/ScopeView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

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
    painter_.paint(painter, size(), trace_);
    if (areCursorsShown_)
        painter_.paintCursors(painter, size(), cursors_,
                              hasFocus() ? std::optional(activeCursor_) : std::nullopt);
    Q_EMIT painted();
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
