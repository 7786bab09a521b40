#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

namespace sonotrace {

/// Keeps windows from painting while others cover them wholly. On X11 without a compositor, that is:
/// elsewhere they are not told, and what is minimised is not painted anyway. One for the application, made
/// after it.
class WindowVisibility : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    WindowVisibility();

    /// Asks to be told of the visibility of each new window.
    bool eventFilter(QObject* watched, QEvent* event) override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
};

} // namespace sonotrace
