#include "scope/TriggerSearch.h"

#include "base/SystemLog.h"

#include <algorithm>

namespace sonotrace {

namespace {

/// Samples passed over between the two sides of the level, so that noise on a slow edge does not trigger.
constexpr std::int32_t kHoldOff = 10;

/// First sample from `first` on, or else `last`, for which `condition` holds.
template <typename Condition>
std::int32_t firstThat(Condition condition, ScopeSamples samples, std::int32_t first, std::int32_t last) {
    while (first < last && !condition(samples[static_cast<std::size_t>(first)]))
        ++first;
    return first;
}

} // namespace

TriggerPosition findTrigger(ScopeSamples samples, const TriggerCondition& condition, std::int32_t length,
                            std::int32_t start) {
    const double level = condition.level;
    const auto isAbove = [level](std::int16_t sample) { return sample > level; };
    const auto isBelow = [level](std::int16_t sample) { return sample < level; };
    const auto block = static_cast<std::int32_t>(kScopeBlock);
    const std::int32_t last = block - 1 - length; // a trace must have room behind it

    std::int32_t base = std::clamp(start, 0, block);
    if (base <= last) {
        base = 1 + (condition.polarity ? firstThat(isAbove, samples, base, last)
                                       : firstThat(isBelow, samples, base, last));
    }
    base += kHoldOff;
    if (base > last)
        return {base, false};
    base = condition.polarity ? firstThat(isBelow, samples, base, last)
                              : firstThat(isAbove, samples, base, last);
    const std::int16_t stop = samples[static_cast<std::size_t>(base)];
    return {base + 1, condition.polarity ? isBelow(stop) : isAbove(stop)};
}

TriggerSearch::Trace TriggerSearch::search(std::size_t ch, ScopeSamples samples,
                                           const TriggerCondition& condition, std::int32_t length,
                                           std::int32_t start) {
    const TriggerPosition position = findTrigger(samples, condition, length, start);
    systemLog("ch %d triggerBase %d   displayBuflength %d", static_cast<int>(ch), position.triggerBase,
              length);
    HeldBlock& held = held_[ch];
    if (!position.found)
        return {held.samples, held.triggerBase, true};
    std::ranges::copy(samples, held.samples.begin());
    held.triggerBase = position.triggerBase;
    return {samples, position.triggerBase, false};
}

} // namespace sonotrace
