#include "widgets/RealSlider.h"

#include "base/Numbers.h"

#include <QKeyEvent>

#include <algorithm>
#include <cmath>

namespace sonotrace {

namespace {
constexpr int kSteps = 1000;
}

RealSlider::RealSlider(QWidget* parent) : RealSlider(Qt::Horizontal, parent) {}

RealSlider::RealSlider(Qt::Orientation orientation, QWidget* parent) : QSlider(orientation, parent) {
    QSlider::setRange(0, kSteps);
    setSingleStep(kSteps / 100);
    setPageStep(kSteps / 10);
    connect(this, &QSlider::valueChanged, this, [this](int position) {
        if (showing_)
            return;
        value_ = minimum_ + (maximum_ - minimum_) * position / kSteps;
        Q_EMIT doubleValueChanged(value_);
        Q_EMIT valueEdited();
    });
}

void RealSlider::setMinimumValue(double minimum) {
    minimum_ = minimum;
    setDoubleValue(value_);
}

void RealSlider::setMaximumValue(double maximum) {
    maximum_ = maximum;
    setDoubleValue(value_);
}

std::int32_t RealSlider::integerValue() const {
    return truncateToInt32(value_);
}

void RealSlider::setDoubleValue(double value) {
    value_ = std::isnan(value) ? minimum_ : std::max(minimum_, std::min(value, maximum_));
    showValue();
    Q_EMIT doubleValueChanged(value_);
}

void RealSlider::enterValue(double value) {
    setDoubleValue(value);
    Q_EMIT valueEdited();
}

void RealSlider::setFirstValue(double value, QWidget* name) {
    firstValue_ = value;
    if (!name)
        return;
    name->setToolTip(QString("Double-click: back to the value of a first start"));
    name->installEventFilter(this);
}

bool RealSlider::eventFilter(QObject*, QEvent* event) {
    const bool isReset = event->type() == QEvent::MouseButtonDblClick && isEnabled();
    if (isReset)
        enterValue(*firstValue_);
    return isReset;
}

void RealSlider::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const bool isUp = key == Qt::Key_Right || key == Qt::Key_Up;
    if (key == Qt::Key_F2)
        Q_EMIT typingAsked();
    else if (key == Qt::Key_Delete && firstValue_)
        enterValue(*firstValue_);
    else if ((event->modifiers() & Qt::ControlModifier) &&
             (isUp || key == Qt::Key_Left || key == Qt::Key_Down))
        setValue(value() + (isUp ? 1 : -1));
    else
        QSlider::keyPressEvent(event);
}

void RealSlider::showValue() {
    showing_ = true;
    const double range = maximum_ - minimum_;
    const int position =
        range > 0.0 ? static_cast<int>(std::lround((value_ - minimum_) / range * kSteps)) : 0;
    // At an end only with the value of the end, so that the user can still go there.
    setValue(std::clamp(position, value_ > minimum_ ? 1 : 0, value_ < maximum_ ? kSteps - 1 : kSteps));
    showing_ = false;
}

} // namespace sonotrace
