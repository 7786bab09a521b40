#pragma once

#include "platform/RunLoop.h"

#include <QObject>
#include <QSocketNotifier>

#include <optional>

namespace sonotrace {

/// The run loop of the thread this object lives on, by way of Qt's event loop: an event posted to that would
/// allocate and lock, so a descriptor wakes it.
class QtRunLoop : public QObject, public RunLoop {
    Q_OBJECT

public:
    QtRunLoop();
    ~QtRunLoop() override;

    void wake() override;

private:
    void timerEvent(QTimerEvent* event) override;

    const int event_;
    std::optional<QSocketNotifier> notifier_;
};

} // namespace sonotrace
