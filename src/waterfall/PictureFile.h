#pragma once

#include <QByteArray>

namespace sonotrace {

class WaterfallImage;

/// The whole picture, 1536 x 1024 with alpha, as a file of one of Qt's formats. Empty when Qt has no writer
/// for it. Any thread.
QByteArray writtenPicture(const WaterfallImage& image, const char* format);

} // namespace sonotrace
