#pragma once

#include "base/PlotShapes.h"
#include "scope/ScopeCapture.h"
#include "scope/ScopeControls.h"
#include "scope/TriggerSearch.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace sonotrace {

/// What a channel's trace shows.
struct ScopeFindings {
    bool held = true;                  ///< no crossing was found: it is an earlier block, or none
    std::int32_t signalLength = 10000; ///< samples from the start on; behind them there is none
};

/// The traces of both channels as lines across the view, the first around three quarters of its height, the
/// second around one quarter. Kept from redraw to redraw: the triggers remember their last blocks, and the
/// points are allocated once. Window thread.
class ScopeTrace {
public:
    static constexpr double kLineWidth = 0.5;

    ScopeTrace();

    /// Searches both triggers and computes the lines for a view of `width` by `height` points. The second
    /// channel's search starts where the first channel's trace does, so that it is never triggered before the
    /// first.
    void build(const ScopeControls& controls, const ScopeCapture& capture, double width, double height);

    /// A channel's line: its start, then a corner per sample (the first of them is the start once more).
    std::span<const PlotPoint> line(std::int32_t ch) const { return lines_[ch == 0 ? 0 : 1]; }

    const ScopeFindings& findings(std::int32_t ch) const { return findings_[ch == 0 ? 0 : 1]; }

private:
    TriggerSearch triggers_;
    std::array<ScopeFindings, 2> findings_;
    std::array<std::vector<PlotPoint>, 2> lines_;
};

} // namespace sonotrace
