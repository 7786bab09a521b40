#include "spectrum/SpectrumView.h"

#include "spectrum/SpectrumGrid.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr int kFarStep = 10; // columns, with Shift
constexpr int kPageStep = 100;

} // namespace

SpectrumView::SpectrumView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    setFocusPolicy(Qt::StrongFocus);
}

void SpectrumView::setModel(const SpectrumAnalysis& analysis, const SpectrumDisplay& display) {
    analysis_ = &analysis;
    display_ = &display;
    update();
}

QSize SpectrumView::minimumSizeHint() const {
    return {320, static_cast<int>(std::ceil(SpectrumGrid::kLowestView))};
}

void SpectrumView::showSpectrum() {
    const Setting setting{*display_, analysis_->fftSize(), size()};
    if (setting_ == setting) {
        build();
        update(paintedRows_ | painter_.traceRows());
    } else {
        update();
    }
    setting_ = setting;
}

SpectrumGeometry SpectrumView::plotGeometry() const {
    return spectrumGeometry(spectrumBounds(size()), *display_, analysis_->fftSize());
}

void SpectrumView::build() {
    painter_.build(size(), {analysis_->powerSpectrum(), analysis_->fftSize()}, *display_, overlays_);
}

std::optional<double> SpectrumView::traceHeight(int column) const {
    const auto i = static_cast<std::size_t>(column - plotGeometry().left);
    if (i < painter_.trace().bars().size())
        return painter_.trace().bars()[i].y + painter_.trace().bars()[i].height;
    if (i + 1 < painter_.trace().line().size())
        return painter_.trace().line()[i + 1].y;
    return std::nullopt;
}

void SpectrumView::setMarkers(std::vector<SpectrumMarker> markers) {
    if (markers == markers_)
        return;
    markers_ = std::move(markers);
    update();
}

void SpectrumView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!analysis_) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    build();
    paintedRows_ = painter_.traceRows();
    painter_.paint(painter, font(), marks());
}

SpectrumMarks SpectrumView::marks() const {
    return {markers_, pointsWithKeys_ ? pointer_ : std::nullopt};
}

void SpectrumView::point(int column) {
    const SpectrumGeometry geometry = plotGeometry();
    if (geometry.width > 0)
        pointer_ = std::clamp(column, geometry.left, geometry.right - 1);
}

void SpectrumView::mouseMoveEvent(QMouseEvent* event) {
    const int column = static_cast<int>(event->position().x());
    if (std::exchange(pointsWithKeys_, false))
        update();
    pointer_.reset();
    if (analysis_ && column >= plotGeometry().left && column < plotGeometry().right)
        pointer_ = column;
}

void SpectrumView::mousePressEvent(QMouseEvent* event) {
    mouseMoveEvent(event);
    if (event->button() == Qt::LeftButton && pointer_)
        Q_EMIT clicked(*pointer_);
    else if (event->button() == Qt::RightButton)
        Q_EMIT escaped();
}

void SpectrumView::leaveEvent(QEvent*) {
    if (!pointsWithKeys_)
        pointer_.reset();
}

void SpectrumView::keyPressEvent(QKeyEvent* event) {
    const int step = event->modifiers() & Qt::ShiftModifier ? kFarStep : 1;
    const int from = pointer_.value_or(width() / 2);
    switch (event->key()) {
    case Qt::Key_Left:
        point(from - step);
        break;
    case Qt::Key_Right:
        point(from + step);
        break;
    case Qt::Key_PageUp:
        point(from + kPageStep);
        break;
    case Qt::Key_PageDown:
        point(from - kPageStep);
        break;
    case Qt::Key_Home:
        point(0);
        break;
    case Qt::Key_End:
        point(width());
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (pointer_)
            Q_EMIT clicked(*pointer_);
        return;
    case Qt::Key_Escape:
        Q_EMIT escaped();
        return;
    default:
        event->ignore();
        return;
    }
    pointsWithKeys_ = true;
    update();
}

/// With the keys it begins where it was, or in the middle. A window that is only activated shows no pointer.
void SpectrumView::focusInEvent(QFocusEvent* event) {
    if (analysis_ && (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)) {
        pointsWithKeys_ = true;
        point(pointer_.value_or(width() / 2));
    }
    update();
}

void SpectrumView::focusOutEvent(QFocusEvent* event) {
    const bool comesBack =
        event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason;
    if (!comesBack && std::exchange(pointsWithKeys_, false))
        pointer_.reset();
    update();
}

void SpectrumView::resizeEvent(QResizeEvent*) {
    pointer_.reset();
    Q_EMIT resized();
}

} // namespace sonotrace
