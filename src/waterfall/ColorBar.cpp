#include "waterfall/ColorBar.h"

#include "waterfall/ColorMap.h"

#include <QPainter>

namespace sonotrace {

namespace {
constexpr int kSteps = 255; // that are ever painted
constexpr int kWidth = 14;  // points, with the gap to the picture
constexpr int kGap = 4;
} // namespace

ColorBar::ColorBar(QWidget* parent) : QWidget(parent), steps_(1, kSteps, QImage::Format_RGBA8888) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    isColoured_ = true;
    setColoured(false);
}

void ColorBar::setColoured(bool isColoured) {
    if (isColoured == isColoured_)
        return;
    isColoured_ = isColoured;
    const ColorMap map;
    for (int step = 0; step < kSteps; ++step) {
        const auto i = static_cast<std::size_t>(step);
        const std::uint32_t word = isColoured ? map.colors()[i] : map.greys()[i];
        const auto part = [word](unsigned shift) { return static_cast<int>(word >> shift & 0xFFU); };
        steps_.setPixelColor(0, kSteps - 1 - step, QColor(part(0), part(8), part(16)));
    }
    update();
}

QSize ColorBar::sizeHint() const {
    return {kWidth, 1};
}

void ColorBar::paintEvent(QPaintEvent*) {
    QPainter(this).drawImage(rect().adjusted(kGap, 0, 0, 0), steps_);
}

} // namespace sonotrace
