#include "widgets/LevelIndicator.h"

#include "widgets/MeterScale.h"

#include <QPainter>

namespace sonotrace {

namespace {

constexpr double kWarning = -12.0; // dB, where the bar turns from green to amber
constexpr double kAlarm = -1.0;    // dB, and to red: what comes next wraps or clips

const QColor kQuiet(0x2e, 0xa0, 0x43);
const QColor kLoud(0xd2, 0x99, 0x22);
const QColor kTooLoud(0xda, 0x36, 0x33);

QString readout(double peak) {
    const double decibels = decibelsOfPeak(peak);
    return decibels < kLevelScaleFloor ? "−∞ dB" : QString("%1 dB").arg(decibels, 0, 'f', 1);
}

/// Where a level lies on the bar.
double placeOnBar(const QRectF& bar, double decibels) {
    return bar.left() + bar.width() * levelPosition(decibels);
}

} // namespace

LevelIndicator::LevelIndicator(QWidget* parent) : QWidget(parent), readout_(readout(0.0)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_OpaquePaintEvent);
    placeBar();
}

void LevelIndicator::setDoubleValue(double value) {
    const auto lastPixel = [this](double peak) {
        return std::lround(placeOnBar(bar_, decibelsOfPeak(peak)) * devicePixelRatio());
    };
    const QString text = readout(value);
    // Repaint only what can be seen: it takes a round trip to the display.
    if (text != readout_ || lastPixel(value) != lastPixel(value_))
        update();
    if (text != readout_)
        setAccessibleDescription(QString("Input level, %1").arg(text));
    readout_ = text;
    value_ = value;
}

QSize LevelIndicator::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance("-00.0 dB") * 3, metrics.height() + 4};
}

QSize LevelIndicator::minimumSizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance("-00.0 dB") * 2, metrics.height() + 4};
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
    const int textWidth = fontMetrics().horizontalAdvance("-00.0 dB ") + 4;
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
    painter.drawText(rect(), Qt::AlignRight | Qt::AlignVCenter, readout_);
}

} // namespace sonotrace
