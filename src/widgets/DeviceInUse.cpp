#include "widgets/DeviceInUse.h"

#include <QComboBox>

namespace sonotrace {

QString selectDeviceInUse(QComboBox& popup, const DevicePosition& position, const ChosenDevice& chosen,
                          const QueueState& state) {
    const bool running = state.phase == QueueState::Phase::Running;
    const auto wanted = position(chosen.uid);
    const auto used = running ? position(state.deviceUid) : std::nullopt;
    const bool gone = !wanted && !chosen.uid.empty();
    const QString trouble = gone ? QString("%1 is gone").arg(QString::fromStdString(chosen.name)) : QString();
    popup.setPlaceholderText(trouble);
    popup.setCurrentIndex(wanted.value_or(used.value_or(gone ? -1 : popup.currentIndex())));
    return gone && used ? QString("%1: now on %2").arg(trouble, popup.currentText()) : trouble;
}

bool DeviceReturn::isReturn(const QueueState& state) {
    const bool lost = state.phase == QueueState::Phase::DeviceLost || state.moved;
    const bool settled = state.phase == QueueState::Phase::Running && !state.moved;
    // Without a new stream it was the user who moved it there and back.
    const bool isBack = away_ && settled && state.openings != openings_;
    if (lost)
        openings_ = state.openings;
    away_ = lost || (away_ && !settled);
    return isBack;
}

} // namespace sonotrace
