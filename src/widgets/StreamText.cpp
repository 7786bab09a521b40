#include "widgets/StreamText.h"

namespace sonotrace {

QString describeStream(const QueueState& state) {
    const QString device = QString::fromStdString(state.deviceName);
    switch (state.phase) {
    case QueueState::Phase::Stopped:
        return "stopped";
    case QueueState::Phase::Waiting:
        return "waiting for the sound server";
    case QueueState::Phase::DeviceLost:
        return "the device is gone, choose another";
    case QueueState::Phase::Failed:
        return "no stream: the system has no resources left for one";
    case QueueState::Phase::Running:
        break;
    }
    QString text = device.isEmpty() ? "default device" : device;
    if (state.moved)
        text = QString("on %1, not on the chosen device").arg(text);
    if (state.underruns > 0)
        text += QString(" (%1 gaps)").arg(state.underruns);
    return text;
}

} // namespace sonotrace
