#pragma once

#include "platform/AudioQueue.h"

#include <QString>

namespace sonotrace {

/// What a stream's state means to the user: the device's name, or what is wrong.
QString describeStream(const QueueState& state);

} // namespace sonotrace
