#include "widgets/UnfocusedWheel.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <QScrollBar>

namespace sonotrace {

namespace {

/// Whether a turn of the wheel changes a value there.
bool holdsValue(const QObject& object) {
    const auto is = [&object](const QMetaObject& kind) { return kind.cast(&object) != nullptr; };
    if (is(QScrollBar::staticMetaObject))
        return false;
    return is(QComboBox::staticMetaObject) || is(QAbstractSlider::staticMetaObject) ||
           is(QAbstractSpinBox::staticMetaObject) || is(QLineEdit::staticMetaObject);
}

} // namespace

UnfocusedWheel::UnfocusedWheel() {
    qApp->installEventFilter(this);
}

bool UnfocusedWheel::eventFilter(QObject* watched, QEvent* event) {
    if ((event->type() != QEvent::Polish && event->type() != QEvent::Wheel) || !holdsValue(*watched))
        return false;
    auto& control = static_cast<QWidget&>(*watched);
    if (event->type() == QEvent::Polish) {
        if (control.focusPolicy() == Qt::WheelFocus)
            control.setFocusPolicy(Qt::StrongFocus);
        return false;
    }
    if (control.hasFocus())
        return false;
    event->ignore();
    return true;
}

} // namespace sonotrace
