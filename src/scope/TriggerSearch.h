#pragma once

#include "scope/ScopeCapture.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace sonotrace {

/// Where a search ended.
struct TriggerPosition {
    std::int32_t triggerBase = 0; ///< sample behind the crossing; for a failed search where it gave up
    bool found = false;
};

/// What a signal must do to trigger.
struct TriggerCondition {
    double level = 0;      ///< sample units; a level that no sample passes, or NaN, never triggers
    bool polarity = false; ///< false: rise above the level, true: fall below it
};

/// Looks, from sample `start` on, for the place where the signal has been on one side of the level and, ten
/// samples later or more, passes to the other, leaving room for `length` (10 to 10000) samples behind it.
TriggerPosition findTrigger(ScopeSamples samples, const TriggerCondition& condition, std::int32_t length,
                            std::int32_t start);

/// The trigger of both channels, with the last block of each that triggered: it stays on the screen while
/// there is no other. Window thread.
class TriggerSearch {
public:
    struct Trace {
        std::span<const std::int16_t> samples; ///< at least 10000 from `triggerBase` on
        std::int32_t triggerBase = 0;          ///< first sample to draw
        bool held = false;                     ///< found in an earlier block, or never
    };

    /// Searches channel `ch` (0 or 1) with findTrigger() and writes a line to the system log. The result
    /// refers to `samples`, or, when the search fails, to the channel's held block.
    Trace search(std::size_t ch, ScopeSamples samples, const TriggerCondition& condition, std::int32_t length,
                 std::int32_t start);

private:
    /// A held trigger may be followed by a longer trace than it was found for: that reads the zeros at the
    /// end.
    static constexpr std::size_t kHeldSamples = 50000;

    struct HeldBlock {
        std::array<std::int16_t, kHeldSamples> samples{};
        std::int32_t triggerBase = 0;
    };

    std::array<HeldBlock, 2> held_;
};

} // namespace sonotrace
