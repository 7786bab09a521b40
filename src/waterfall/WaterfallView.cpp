#include "waterfall/WaterfallView.h"

#include <QBuffer>
#include <QImage>
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
    if (!image_) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    image_->setBounds(width(), height());
    const QImage picture(reinterpret_cast<const uchar*>(shown_.words()), kPicture.width(), kPicture.height(),
                         ShownPicture::kStride * ScrollingBitmap::kBytesPerPixel, QImage::Format_RGB32);
    // Together they cover the view: nothing is filled under them.
    for (const ShownPicture::Piece& piece : shown_.update(image_->bitmap(), width(), height()))
        painter.drawImage(QPoint(piece.x, piece.y), picture,
                          QRect(piece.copyX, piece.copyY, piece.width, piece.height));
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
