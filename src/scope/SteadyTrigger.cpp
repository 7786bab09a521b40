#include "scope/SteadyTrigger.h"

#include "measure/BandLimited.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace sonotrace {

namespace {

constexpr double kHysteresis = 0.05; ///< of the peak to peak
constexpr double kAsSteep = 0.7;     ///< of the steepest; how steep one is, depends on where its samples lie
constexpr int kHalvings = 12;

struct Crossing {
    std::size_t behind; ///< first sample on the other side
    double steepness;   ///< sample units per sample
};

} // namespace

std::optional<double> findSteadyCrossing(std::span<const std::int16_t> samples,
                                         const TriggerCondition& condition, double from, double to) {
    if (samples.empty())
        return std::nullopt;
    // Seen upside down, a falling signal rises.
    const double sign = condition.polarity ? -1.0 : 1.0;
    const auto above = [&](double sample) { return sign * (sample - condition.level); };
    const auto [low, high] = std::ranges::minmax(samples);
    const double depth = -std::min(above(low), above(high));
    const double margin = std::min(kHysteresis * (high - low), 0.5 * depth);
    std::vector<Crossing> crossings;
    double steepest = 0.0;
    bool isArmed = false;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        const double before = above(samples[i - 1]);
        const double here = above(samples[i]);
        isArmed = isArmed || before < -margin;
        if (!isArmed || !(before <= 0.0 && here > 0.0))
            continue;
        isArmed = false;
        const auto place = static_cast<double>(i);
        if (place - 1.0 < from || place > to)
            continue;
        crossings.push_back({i, here - before});
        steepest = std::max(steepest, here - before);
    }
    const auto chosen = std::ranges::find_if(
        crossings, [&](const Crossing& crossing) { return crossing.steepness >= kAsSteep * steepest; });
    if (chosen == crossings.end())
        return std::nullopt;
    auto upper = static_cast<double>(chosen->behind);
    double lower = upper - 1.0;
    for (int i = 0; i < kHalvings; ++i) {
        const double middle = 0.5 * (lower + upper);
        (above(bandLimited(samples, middle)) > 0.0 ? upper : lower) = middle;
    }
    return 0.5 * (lower + upper);
}

} // namespace sonotrace
