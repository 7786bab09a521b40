#pragma once

#include <QObject>

namespace sonotrace {

/// Keeps the wheel from pop-ups, sliders, spin boxes and fields without the focus, for the whole application,
/// as long as it lives: who scrolls past a control does not mean it. The wheel goes on to what lies around
/// the control, and does not give it the focus either.
class UnfocusedWheel : public QObject {
    Q_OBJECT

public:
    UnfocusedWheel();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace sonotrace
