#include "widgets/LevelIndicator.h"

#include "widgets/MeterScale.h"

#include <QAccessible>
#include <QPainter>

#include <utility>

namespace sonotrace {

namespace {

constexpr double kWarning = -12.0; // dB, where the bar turns from green to amber
constexpr double kAlarm = -1.0;    // dB, and to red: what comes next wraps or clips

const QColor kQuiet(0x2e, 0xa0, 0x43);
const QColor kLoud(0xd2, 0x99, 0x22);
const QColor kTooLoud(0xda, 0x36, 0x33);

// The bar follows each value; a number that changes as often cannot be read.
constexpr int kValuesPerReadout = 5;
constexpr auto kBelowScale = "below -60 dB"; // the longest readout
constexpr long kLowest = static_cast<long>(kLevelScaleFloor * 10);

/// Tenths of a decibel, as far as the scale goes; one less below it.
long tenthsOf(double peak) {
    return std::lround(std::max(decibelsOfPeak(peak) * 10.0, kLowest - 1.0));
}

QString readout(long tenths) {
    return tenths < kLowest ? kBelowScale
                            : QString("%1 dB").arg(0.1 * static_cast<double>(tenths), 0, 'f', 1);
}

/// Where a level lies on the bar.
double placeOnBar(const QRectF& bar, double decibels) {
    return bar.left() + bar.width() * levelPosition(decibels);
}

} // namespace

LevelIndicator::LevelIndicator(QWidget* parent)
    : QWidget(parent), tenths_(tenthsOf(0.0)), readout_(readout(tenths_)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_OpaquePaintEvent);
    placeBar();
}

void LevelIndicator::setDoubleValue(double value) {
    const auto lastPixel = [this](double peak) {
        return std::lround(placeOnBar(bar_, decibelsOfPeak(peak)) * devicePixelRatio());
    };
    // Repaint only what can be seen: it takes a round trip to the display.
    if (lastPixel(value) != lastPixel(value_))
        update();
    value_ = value;
    highest_ = std::max(highest_, value);
    if (++valuesSinceReadout_ < kValuesPerReadout)
        return;
    const long tenths = tenthsOf(std::exchange(highest_, 0.0));
    valuesSinceReadout_ = 0;
    if (tenths == tenths_)
        return;
    tenths_ = tenths;
    readout_ = readout(tenths);
    update();
    if (QAccessible::isActive())
        setAccessibleDescription(QString("Input level, %1").arg(readout_));
}

QSize LevelIndicator::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(kBelowScale) * 3, metrics.height() + 4};
}

QSize LevelIndicator::minimumSizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(kBelowScale) * 2, metrics.height() + 4};
}

void LevelIndicator::resizeEvent(QResizeEvent*) {
    placeBar();
}

void LevelIndicator::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    placeBar();
}

/// Leaves room for the readout. (To measure a text takes longer than all else about a new value.)
void LevelIndicator::placeBar() {
    const int textWidth = fontMetrics().horizontalAdvance(kBelowScale) + 8;
    bar_ = QRectF(0.5, 2.5, std::max(1, width() - textWidth) - 1.0, height() - 5.0);
}

void LevelIndicator::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.fillRect(bar_, palette().color(QPalette::Base));

    const double decibels = decibelsOfPeak(value_);
    const struct {
        double from, to;
        const QColor& colour;
    } zones[] = {{kLevelScaleFloor, kWarning, kQuiet}, {kWarning, kAlarm, kLoud}, {kAlarm, 0.0, kTooLoud}};
    for (const auto& zone : zones) {
        const double left = placeOnBar(bar_, zone.from);
        const double right = placeOnBar(bar_, std::min(zone.to, decibels));
        if (right > left)
            painter.fillRect(QRectF(left, bar_.top(), right - left, bar_.height()), zone.colour);
    }
    painter.setPen(palette().color(QPalette::Mid));
    for (int tick = static_cast<int>(kLevelScaleFloor); tick < 0; tick += 12) {
        const double x = std::round(placeOnBar(bar_, tick)) + 0.5;
        painter.drawLine(QPointF(x, bar_.bottom() - 3), QPointF(x, bar_.bottom()));
    }
    painter.drawRect(bar_);
    painter.setPen(palette().color(QPalette::WindowText));
    const QStaticText& text = texts_.laidOut(readout_, painter.font());
    const QSizeF size = text.size();
    painter.drawStaticText(QPointF(width() - size.width(), (height() - size.height()) / 2.0), text);
}

} // namespace sonotrace
