#pragma once

#include "platform/RunLoop.h"

#include <QObject>

namespace sonotrace {

/// The run loop of the thread this object lives on, by way of Qt's event loop.
class QtRunLoop : public QObject, public RunLoop {
    Q_OBJECT

public:
    void post(std::function<void()> task) override {
        QMetaObject::invokeMethod(this, std::move(task), Qt::QueuedConnection);
    }
};

} // namespace sonotrace
