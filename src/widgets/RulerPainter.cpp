#include "widgets/RulerPainter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>

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

double rulerDepth(RulerSide side, const QFont& font) {
    const QFontMetricsF metrics(font);
    const bool isUpright = side != RulerSide::Bottom;
    const double depth = isUpright ? metrics.horizontalAdvance(QString(kDigits, u'0')) : metrics.height();
    return depth + kTick + 2 * kGap;
}

/// The painter's x runs along the axis; its y away from the picture.
void RulerPainter::paint() {
    painter_.setPen(look_.ink);
    painter_.setFont(look_.font);
    const QFontMetricsF metrics(look_.font);
    const double labelLength = scale_.isUpright() ? metrics.height() * kLinesPerLabel
                                                  : metrics.horizontalAdvance(u'0') * kDigitsPerLabel;
    const double unitLength =
        scale_.isUpright() ? metrics.height() : metrics.horizontalAdvance(scale_.unit) + kUnitGap;
    const auto advance = [&](const AxisTick& tick) {
        return metrics.horizontalAdvance(QString::fromStdString(tick.label));
    };
    const double room = scale_.isUpright() ? size_.width() - kTick : labelLength;
    const auto isTooLong = [&](const AxisTick& tick) { return advance(tick) > room; };
    int labels = static_cast<int>(axisLength() / labelLength);
    std::vector<AxisTick> ticks = axisTicks(scale_.axis, labels);
    while (labels > 1 && std::ranges::any_of(ticks, isTooLong)) // fewer need fewer digits
        ticks = axisTicks(scale_.axis, labels /= 2);
    for (AxisTick& tick : ticks) {
        const double extent = scale_.isUpright() ? metrics.height() : advance(tick);
        const bool isAtUnit = scale_.before + tick.place * axisLength() + extent / 2 > length() - unitLength;
        if (isAtUnit || isTooLong(tick)) // half of a number would be another one
            tick.label.clear();
        paintTick(tick);
    }
    if (scale_.axis.isDrawable())
        paintText(length(), scale_.unit, kTick + kGap);
    for (const RulerMark& mark : scale_.marks)
        paintMark(mark);
}

void RulerPainter::paintTick(const AxisTick& tick) const {
    const double along = scale_.before + tick.place * axisLength();
    const double depth = tick.label.empty() ? kShortTick : kTick;
    if (scale_.side == RulerSide::Bottom)
        painter_.drawLine(QPointF(along, 0), QPointF(along, depth));
    else if (scale_.side == RulerSide::Left)
        painter_.drawLine(QPointF(size_.width() - depth, size_.height() - along),
                          QPointF(size_.width(), size_.height() - along));
    else
        painter_.drawLine(QPointF(0, size_.height() - along), QPointF(depth, size_.height() - along));
    paintText(along, QString::fromStdString(tick.label), kTick + kGap);
}

/// Centred at its place along the axis, or as near to that as the ruler's ends allow.
void RulerPainter::paintText(double along, const QString& text, double depth) const {
    if (text.isEmpty())
        return;
    const QFontMetricsF metrics(look_.font);
    const QSizeF size(metrics.horizontalAdvance(text), metrics.height());
    const double extent = scale_.isUpright() ? size.height() : size.width();
    const double start = std::clamp(along - extent / 2, 0.0, std::max(0.0, length() - extent));
    QPointF corner(start, depth);
    if (scale_.isUpright())
        corner = {scale_.side == RulerSide::Left ? size_.width() - depth - size.width() : depth,
                  size_.height() - start - extent};
    painter_.drawText(QRectF(corner, size), Qt::AlignCenter | Qt::TextDontClip, text);
}

void RulerPainter::paintMark(const RulerMark& mark) const {
    const double place = scale_.axis.isDrawable() ? scale_.axis.placeOf(mark.value) : -1.0;
    if (!(place >= 0.0 && place <= 1.0))
        return;
    const double along = scale_.before + place * axisLength();
    QPolygonF triangle{{0, 0}, {-kTick / 2, kTick}, {kTick / 2, kTick}};
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setBrush(mark.colour);
    painter_.save();
    painter_.translate(scale_.isUpright() ? QPointF(scale_.side == RulerSide::Left ? size_.width() : 0,
                                                    size_.height() - along)
                                          : QPointF(along, 0));
    if (scale_.isUpright())
        painter_.rotate(scale_.side == RulerSide::Left ? 90 : -90);
    painter_.drawPolygon(triangle);
    painter_.restore();
    const QFontMetricsF metrics(look_.font);
    if (!mark.text.isEmpty() && !scale_.isUpright()) {
        // On a ground of its own: it may fall upon a label.
        const double extent = metrics.horizontalAdvance(mark.text);
        const double start = std::clamp(along - extent / 2, 0.0, std::max(0.0, length() - extent));
        painter_.fillRect(QRectF(start - kGap, kTick + kGap, extent + 2 * kGap, metrics.height()),
                          look_.ground);
    }
    paintText(along, mark.text, kTick + kGap);
    painter_.restore();
}

} // namespace sonotrace
