#pragma once

#include "base/AxisTicks.h"
#include "base/PlotShapes.h"
#include "scope/ScopeCapture.h"
#include "scope/ScopeControls.h"
#include "scope/TriggerSearch.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace sonotrace {

/// What a channel's trace shows.
struct ScopeFindings {
    bool held = true;                  ///< no crossing was found: it is an earlier block, or none
    std::int32_t signalLength = 10000; ///< samples from the start on; behind them there is none
};

/// Where the levels of a channel lie in the view, full scale being 1.
struct ScopeScale {
    double baseLine = 0; ///< points above the bottom edge
    double rise = 1;     ///< points upward for a full scale; below 0 while it is shown upside down
    double most = 1;     ///< level beyond which it is clipped

    double levelAt(double y) const { return (y - baseLine) / rise; }
};

/// The part of a channel's levels that a view shows: an axis in full scales, and the points below and above
/// it.
struct ScopeLevels {
    Axis axis;
    double below = 0;
    double over = 0;
};

ScopeLevels visibleLevels(const ScopeScale& scale, double height);

/// How the picture comes that a steady trigger makes.
enum class SteadyState {
    Off,
    Centred, ///< around a crossing, with signal from edge to edge
    Cut,     ///< so near to the block's end that a part of the view is empty
    Held     ///< no crossing was found: it is an earlier block, or none
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
    SteadyState steadyState() const { return steadyState_; }

    const ScopeScale& scale(std::int32_t ch) const { return scales_[ch == 0 ? 0 : 1]; }

    /// Time over the view's width in milliseconds, from the left edge or from the steady trigger's crossing.
    const Axis& timeAxis() const { return timeAxis_; }

    /// Level that a channel's line has above a place of the view, if it is there.
    std::optional<double> levelAt(std::int32_t ch, double x) const;

private:
    /// What a steady trigger shows, and goes on showing while it finds no crossing.
    struct SteadyBlock {
        std::array<std::array<std::int16_t, kScopeSignal>, 2> samples{};
        std::array<ScopeScaling, 2> scaling;
        double crossing = kScopeSignal / 2.0;
    };

    void place(const ScopeControls& controls, std::size_t i, const ScopeScaling& scaling, double height);
    void findSteady(const ScopeControls& controls, const ScopeCapture& capture);
    void buildSteady(const ScopeControls& controls, double width, double height);

    TriggerSearch triggers_;
    std::array<std::optional<ScopeScaling>, 2> triggered_; ///< of the last blocks that did
    std::array<ScopeFindings, 2> findings_;
    std::array<std::vector<PlotPoint>, 2> lines_;
    std::array<ScopeScale, 2> scales_;
    Axis timeAxis_{0, 0};
    SteadyBlock steady_;
    SteadyState steadyState_ = SteadyState::Off;
};

} // namespace sonotrace
