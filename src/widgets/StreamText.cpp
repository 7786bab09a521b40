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
    QString text = device.isEmpty() ? QObject::tr("default device") : device;
    if (state.moved)
        text = QObject::tr("on %1, not on the chosen device").arg(text);
    if (state.underruns > 0)
        text += QObject::tr(" (%1 gaps)").arg(state.underruns);
    return text;
}

} // namespace sonotrace
