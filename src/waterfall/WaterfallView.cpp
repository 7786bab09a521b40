#include "waterfall/WaterfallView.h"

#include <QBuffer>
#include <QImageWriter>
#include <QMouseEvent>
#include <QPainter>

namespace sonotrace {

namespace {
constexpr QSize kPicture(ScrollingBitmap::kWidth, ScrollingBitmap::kHeight);
}

WaterfallView::WaterfallView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMaximumSize(kPicture);
    setCursor(Qt::CrossCursor);
    setFocusPolicy(Qt::ClickFocus);
}

void WaterfallView::setModel(WaterfallImage& image) {
    image_ = &image;
    update();
}

void WaterfallView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (!image_)
        return;
    image_->setBounds(width(), height());
    const QSize size = this->size().boundedTo(kPicture);
    if (size.isEmpty())
        return;
    if (visible_.size() != size)
        visible_ = QImage(size, QImage::Format_RGBX8888); // what has not been painted yet is black
    image_->copyRows(kPicture.height() - size.height(), size.height(), size.width(), visible_.bits(),
                     visible_.bytesPerLine());
    painter.drawImage(QPoint(0, height() - size.height()), visible_);
}

void WaterfallView::mousePressEvent(QMouseEvent* event) {
    const double x = event->position().x();
    const double y = height() - event->position().y();
    if (event->button() == Qt::RightButton)
        Q_EMIT rightClicked(x, y);
    else if (event->button() == Qt::LeftButton)
        Q_EMIT leftClicked(x, y);
}

QByteArray WaterfallView::ReturnPNG() const {
    return written("png");
}

QByteArray WaterfallView::ReturnTiff() const {
    return written("tiff");
}

QByteArray WaterfallView::written(const char* format) const {
    if (!image_)
        return {};
    QImage whole(kPicture, QImage::Format_RGBA8888);
    image_->copyRows(0, kPicture.height(), kPicture.width(), whole.bits(), whole.bytesPerLine());
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    return writer.write(whole) ? buffer.data() : QByteArray();
}

} // namespace sonotrace
