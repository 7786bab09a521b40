#pragma once

#include "audio/InputWatch.h"
#include "platform/AudioQueue.h"
#include "widgets/StatusRow.h"

#include <optional>

namespace sonotrace {

/// The volume of the device that is listened to, 1.0 being 100 %.
struct DeviceVolume {
    float slider = 0;            ///< as the window has sent it
    std::optional<float> device; ///< as the device has it; nothing where it has none
    double exponent = 1;         ///< amplitude is volume to this power
};

/// What there is to say about a stream. Gaps are said while they are new.
Hint streamHint(const QueueState& state, bool hasNewGaps);

/// About the volume of a stream that runs, and about what comes through it. `fold`: what is analysed, if it
/// is one signal.
Hints volumeHints(const DeviceVolume& volume);
Hints signalHints(const InputFindings& findings, std::optional<ChannelFold> fold);

/// A time to wait, in the unit that suits it: "3.0 s", "12 min", "5 h", "4 days".
QString waitingTime(double seconds);

} // namespace sonotrace
