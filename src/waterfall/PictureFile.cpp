#include "waterfall/PictureFile.h"

#include "waterfall/WaterfallImage.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>

namespace sonotrace {

QByteArray writtenPicture(const WaterfallImage& image, const char* format) {
    QImage whole(ScrollingBitmap::kWidth, ScrollingBitmap::kHeight, QImage::Format_RGBA8888);
    image.copyRows(0, whole.height(), whole.width(), whole.bits(), whole.bytesPerLine());
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    return writer.write(whole) ? buffer.data() : QByteArray();
}

} // namespace sonotrace
