#include "waterfall/WaterfallView.h"

#include "waterfall/PictureFile.h"

#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace sonotrace {

namespace {
constexpr QSize kPicture(ScrollingBitmap::kWidth, ScrollingBitmap::kHeight);
constexpr int kCoarseStep = 10; // points
} // namespace

WaterfallView::WaterfallView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMaximumSize(kPicture);
    setCursor(Qt::CrossCursor);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

void WaterfallView::setModel(WaterfallImage& image) {
    image_ = &image;
    update();
}

void WaterfallView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!image_) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    image_->setBounds(width(), height());
    shownScrolled_ = image_->scrolled();
    const QImage picture(reinterpret_cast<const uchar*>(shown_.words()), kPicture.width(), kPicture.height(),
                         ShownPicture::kStride * ScrollingBitmap::kBytesPerPixel, QImage::Format_RGB32);
    // Together they cover the view: nothing is filled under them.
    for (const ShownPicture::Piece& piece : shown_.update(image_->bitmap(), width(), height()))
        painter.drawImage(QPoint(piece.x, piece.y), picture,
                          QRect(piece.copyX, piece.copyY, piece.width, piece.height));
    if (!hasCrossHair_)
        return;
    const QPoint place = probe_->toPoint();
    for (const QPen& pen : {QPen(Qt::black), QPen(Qt::white, 1, Qt::DashLine)}) { // seen on any colour
        painter.setPen(pen);
        painter.drawLine(0, place.y(), width(), place.y());
        painter.drawLine(place.x(), 0, place.x(), height());
    }
}

void WaterfallView::mousePressEvent(QMouseEvent* event) {
    const auto [x, y] = fromBottomLeft(event->position());
    if (event->button() == Qt::RightButton)
        Q_EMIT rightClicked(x, y);
    else if (event->button() == Qt::LeftButton)
        Q_EMIT leftClicked(x, y);
}

void WaterfallView::mouseMoveEvent(QMouseEvent* event) {
    hideCrossHair();
    probe_ = event->position();
}

void WaterfallView::leaveEvent(QEvent*) {
    if (!hasCrossHair_)
        probe_.reset();
}

std::optional<PicturePoint> WaterfallView::probe() const {
    if (!probe_ || !rect().contains(probe_->toPoint()))
        return std::nullopt;
    return fromBottomLeft(*probe_);
}

void WaterfallView::keyPressEvent(QKeyEvent* event) {
    const bool hasShift = event->modifiers() & Qt::ShiftModifier;
    const int step = hasShift ? kCoarseStep : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        return moveCrossHair({-step, 0});
    case Qt::Key_Right:
        return moveCrossHair({step, 0});
    case Qt::Key_Up:
        return moveCrossHair({0, -step});
    case Qt::Key_Down:
        return moveCrossHair({0, step});
    case Qt::Key_Home:
        return moveCrossHair({-width(), 0});
    case Qt::Key_End:
        return moveCrossHair({width(), 0});
    case Qt::Key_Return:
    case Qt::Key_Enter:
        moveCrossHair({});
        if (const auto point = probe(); point && hasShift)
            Q_EMIT rightClicked(point->x, point->y);
        else if (point)
            Q_EMIT leftClicked(point->x, point->y);
        return;
    default:
        if (event->key() == Qt::Key_Escape && hasCrossHair_)
            return hideCrossHair();
        QWidget::keyPressEvent(event);
    }
}

/// From where the mouse was, or the middle.
void WaterfallView::moveCrossHair(const QPoint& by) {
    const QPoint from = probe_ ? probe_->toPoint() : rect().center();
    probe_ = QPointF(std::clamp(from.x() + by.x(), 0, std::max(0, width() - 1)),
                     std::clamp(from.y() + by.y(), 0, std::max(0, height() - 1)));
    hasCrossHair_ = true;
    update();
}

void WaterfallView::hideCrossHair() {
    if (!hasCrossHair_)
        return;
    hasCrossHair_ = false;
    probe_.reset();
    update();
}

/// Who comes with the keys sees where they are.
void WaterfallView::focusInEvent(QFocusEvent* event) {
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        moveCrossHair({});
}

void WaterfallView::focusOutEvent(QFocusEvent* event) {
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        hideCrossHair();
}

QByteArray WaterfallView::ReturnPNG() const {
    return written("png");
}

QByteArray WaterfallView::ReturnTiff() const {
    return written("tiff");
}

QByteArray WaterfallView::written(const char* format) const {
    return image_ ? writtenPicture(*image_, format) : QByteArray();
}

} // namespace sonotrace
