#pragma once

#include "audio/StreamQueue.h"

#include <QString>

#include <functional>
#include <optional>

class QComboBox;

namespace sonotrace {

/// Where a device stands in a pop-up, by its UID.
using DevicePosition = std::function<std::optional<int>(const std::string& uid)>;

/// Selects, in a pop-up whose list was built anew, the device that was chosen, or where it is gone the one
/// that the stream is on instead. Says so then, otherwise nothing.
QString selectDeviceInUse(QComboBox& popup, const DevicePosition& position, const ChosenDevice& chosen,
                          const QueueState& state);

/// Notices that a stream is back on a device that was lost. Window thread.
class DeviceReturn {
public:
    /// To be shown every state, in order. True once for each return.
    bool isReturn(const QueueState& state);

private:
    bool away_ = false;
    std::uint32_t openings_ = 0; ///< while it was away
};

} // namespace sonotrace
