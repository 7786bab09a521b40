#include "widgets/Ruler.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr double kTick = 6.0;      // points, of a tick with a label
constexpr double kShortTick = 3.0; // and of one without
constexpr double kUnitGap = 6.0;   // from the last label to the unit
constexpr double kGap = 2.0;       // between a tick and its label
constexpr int kDigits = 6;         // an upright ruler has room for
constexpr double kLinesPerLabel = 2.5;
constexpr double kDigitsPerLabel = 8.0;

} // namespace

Ruler::Ruler(Side side, const QString& title, const QString& unit, QWidget* parent)
    : QWidget(parent), side_(side), title_(title), unit_(unit) {
    setAccessibleName(title);
    if (isUpright())
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    else
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    describe();
}

void Ruler::describe() {
    const QString range = axis_.isDrawable() ? QString("%1 to %2 %3").arg(axis_.from).arg(axis_.to).arg(unit_)
                                             : QString("nothing to show");
    setAccessibleDescription(range);
    setToolTip(QString("%1: %2").arg(title_, range));
}

void Ruler::setAxis(const Axis& axis) {
    // One that is not a number differs from itself, and would be taken for a new one each time.
    const Axis shown = axis.isDrawable() ? axis : Axis{0, 0};
    if (shown == std::exchange(axis_, shown))
        return;
    describe();
    update();
}

void Ruler::setUnit(const QString& unit) {
    if (unit == std::exchange(unit_, unit))
        return;
    describe();
    update();
}

void Ruler::setMargins(double before, double behind) {
    if (before == before_ && behind == behind_)
        return;
    before_ = before;
    behind_ = behind;
    update();
}

void Ruler::setMarks(std::vector<RulerMark> marks) {
    if (marks == marks_)
        return;
    marks_ = std::move(marks);
    update();
}

QSize Ruler::sizeHint() const {
    const QFontMetricsF metrics(font());
    const double depth = isUpright() ? metrics.horizontalAdvance(QString(kDigits, u'0')) : metrics.height();
    const int points = static_cast<int>(std::ceil(depth + kTick + 2 * kGap));
    return isUpright() ? QSize(points, 1) : QSize(1, points);
}

/// The painter's x runs along the axis; its y away from the picture.
void Ruler::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QFontMetricsF metrics(font());
    const double labelLength =
        isUpright() ? metrics.height() * kLinesPerLabel : metrics.horizontalAdvance(u'0') * kDigitsPerLabel;
    const double unitLength = isUpright() ? metrics.height() : metrics.horizontalAdvance(unit_) + kUnitGap;
    const auto advance = [&](const AxisTick& tick) {
        return metrics.horizontalAdvance(QString::fromStdString(tick.label));
    };
    const double room = isUpright() ? width() - kTick : labelLength;
    const auto isTooLong = [&](const AxisTick& tick) { return advance(tick) > room; };
    int labels = static_cast<int>(axisLength() / labelLength);
    std::vector<AxisTick> ticks = axisTicks(axis_, labels);
    while (labels > 1 && std::ranges::any_of(ticks, isTooLong)) // fewer need fewer digits
        ticks = axisTicks(axis_, labels /= 2);
    for (AxisTick& tick : ticks) {
        const double extent = isUpright() ? metrics.height() : advance(tick);
        const bool isAtUnit = before_ + tick.place * axisLength() + extent / 2 > length() - unitLength;
        if (isAtUnit || isTooLong(tick)) // half of a number would be another one
            tick.label.clear();
        paintTick(painter, tick);
    }
    if (axis_.isDrawable())
        paintText(painter, length(), unit_, kTick + kGap);
    for (const RulerMark& mark : marks_)
        paintMark(painter, mark);
}

void Ruler::paintTick(QPainter& painter, const AxisTick& tick) const {
    const double along = before_ + tick.place * axisLength();
    const double depth = tick.label.empty() ? kShortTick : kTick;
    if (side_ == Side::Bottom)
        painter.drawLine(QPointF(along, 0), QPointF(along, depth));
    else if (side_ == Side::Left)
        painter.drawLine(QPointF(width() - depth, height() - along), QPointF(width(), height() - along));
    else
        painter.drawLine(QPointF(0, height() - along), QPointF(depth, height() - along));
    paintText(painter, along, QString::fromStdString(tick.label), kTick + kGap);
}

/// Centred at its place along the axis, or as near to that as the ruler's ends allow.
void Ruler::paintText(QPainter& painter, double along, const QString& text, double depth) const {
    if (text.isEmpty())
        return;
    const QFontMetricsF metrics(font());
    const QSizeF size(metrics.horizontalAdvance(text), metrics.height());
    const double extent = isUpright() ? size.height() : size.width();
    const double start = std::clamp(along - extent / 2, 0.0, std::max(0.0, length() - extent));
    QPointF corner(start, depth);
    if (isUpright())
        corner = {side_ == Side::Left ? width() - depth - size.width() : depth, height() - start - extent};
    painter.drawText(QRectF(corner, size), Qt::AlignCenter | Qt::TextDontClip, text);
}

void Ruler::paintMark(QPainter& painter, const RulerMark& mark) const {
    const double place = axis_.isDrawable() ? axis_.placeOf(mark.value) : -1.0;
    if (!(place >= 0.0 && place <= 1.0))
        return;
    const double along = before_ + place * axisLength();
    QPolygonF triangle{{0, 0}, {-kTick / 2, kTick}, {kTick / 2, kTick}};
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(mark.colour);
    painter.save();
    painter.translate(isUpright() ? QPointF(side_ == Side::Left ? width() : 0, height() - along)
                                  : QPointF(along, 0));
    if (isUpright())
        painter.rotate(side_ == Side::Left ? 90 : -90);
    painter.drawPolygon(triangle);
    painter.restore();
    const QFontMetricsF metrics(font());
    if (!mark.text.isEmpty() && !isUpright()) {
        // On a ground of its own: it may fall upon a label.
        const double extent = metrics.horizontalAdvance(mark.text);
        const double start = std::clamp(along - extent / 2, 0.0, std::max(0.0, length() - extent));
        painter.fillRect(QRectF(start - kGap, kTick + kGap, extent + 2 * kGap, metrics.height()),
                         palette().window());
    }
    paintText(painter, along, mark.text, kTick + kGap);
    painter.restore();
}

} // namespace sonotrace
