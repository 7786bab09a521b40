#include "waterfall/ColorBar.h"

#include "waterfall/ColorSteps.h"

#include <QPainter>

namespace sonotrace {

namespace {
constexpr int kWidth = 14; // points, with the gap to the picture
constexpr int kGap = 4;
} // namespace

ColorBar::ColorBar(QWidget* parent) : QWidget(parent), steps_(colorSteps(false)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
}

void ColorBar::setColoured(bool isColoured) {
    if (isColoured == isColoured_)
        return;
    isColoured_ = isColoured;
    steps_ = colorSteps(isColoured);
    update();
}

QSize ColorBar::sizeHint() const {
    return {kWidth, 1};
}

void ColorBar::paintEvent(QPaintEvent*) {
    QPainter(this).drawImage(rect().adjusted(kGap, 0, 0, 0), steps_);
}

} // namespace sonotrace
