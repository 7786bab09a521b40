#include "widgets/StreamText.h"

#include <QObject>

namespace sonotrace {

QString describeStream(const QueueState& state) {
    const QString device = QString::fromStdString(state.deviceName);
    switch (state.phase) {
    case QueueState::Phase::Stopped:
        return QObject::tr("stopped");
    case QueueState::Phase::Waiting:
        return QObject::tr("waiting for the sound server");
    case QueueState::Phase::DeviceLost:
        return QObject::tr("the device is gone, choose another");
    case QueueState::Phase::Running:
        break;
    }
    if (state.moved)
        return QObject::tr("on %1, not on the chosen device").arg(device);
    return device.isEmpty() ? QObject::tr("default device") : device;
}

} // namespace sonotrace
