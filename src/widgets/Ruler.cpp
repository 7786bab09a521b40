#include "widgets/Ruler.h"

#include <QPainter>

#include <cmath>
#include <utility>

namespace sonotrace {

Ruler::Ruler(Side side, const QString& title, const QString& unit, QWidget* parent)
    : QWidget(parent), title_(title), scale_{.side = side, .unit = unit} {
    setAccessibleName(title);
    if (scale_.isUpright())
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    else
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    describe();
}

void Ruler::describe() {
    const QString range =
        scale_.axis.isDrawable()
            ? QString("%1 to %2 %3").arg(scale_.axis.from).arg(scale_.axis.to).arg(scale_.unit)
            : QString("nothing to show");
    setAccessibleDescription(range);
    setToolTip(QString("%1: %2").arg(title_, range));
}

void Ruler::setAxis(const Axis& axis) {
    // One that is not a number differs from itself, and would be taken for a new one each time.
    const Axis shown = axis.isDrawable() ? axis : Axis{0, 0};
    if (shown == std::exchange(scale_.axis, shown))
        return;
    describe();
    update();
}

void Ruler::setUnit(const QString& unit) {
    if (unit == std::exchange(scale_.unit, unit))
        return;
    describe();
    update();
}

void Ruler::setMargins(double before, double behind) {
    if (before == scale_.before && behind == scale_.behind)
        return;
    scale_.before = before;
    scale_.behind = behind;
    update();
}

void Ruler::setMarks(std::vector<RulerMark> marks) {
    if (marks == scale_.marks)
        return;
    scale_.marks = std::move(marks);
    update();
}

QSize Ruler::sizeHint() const {
    const int points = static_cast<int>(std::ceil(rulerDepth(scale_.side, font())));
    return scale_.isUpright() ? QSize(points, 1) : QSize(1, points);
}

void Ruler::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    RulerPainter(painter, scale_, size(), {font(), palette().color(QPalette::WindowText), palette().window()})
        .paint();
}

} // namespace sonotrace
