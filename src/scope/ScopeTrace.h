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

/// The block that a channel's trace is drawn of.
struct ScopeShown {
    std::span<const std::int16_t> raw; ///< as it came from the device; nothing while nothing has triggered
    std::int64_t block = 0;            ///< ScopeCapture::blocks() when it was new
    double start = 0;                  ///< place in it of the time ruler's 0, in samples
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

    /// Computes the lines anew for a view of another size, of what the last search has found.
    void layOut(const std::array<double, 2>& offsets, double width, double height);

    ScopeShown shown(std::int32_t ch) const;

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
    /// A block as it came.
    struct RawBlock {
        std::vector<std::int16_t> samples;
        std::int64_t number = 0;
    };

    /// What a steady trigger shows, and goes on showing while it finds no crossing.
    struct SteadyBlock {
        std::array<std::array<std::int16_t, kScopeSignal>, 2> samples{};
        std::array<ScopeScaling, 2> scaling;
        std::array<RawBlock, 2> raw;
        double crossing = kScopeSignal / 2.0;
    };

    /// What a trigger shows of a channel.
    struct TriggeredBlock {
        std::vector<std::int16_t> samples; ///< that are drawn
        std::int32_t start = 0;            ///< of them in the block
        ScopeScaling scaling;              ///< of the last block that triggered, or of the first one
        bool hasTriggered = false;
        RawBlock raw;
    };

    static void keep(RawBlock& raw, const ScopeCapture& capture, std::size_t i);
    void place(double offset, std::size_t i, const ScopeScaling& scaling, double height);
    void findTriggers(const ScopeControls& controls, const ScopeCapture& capture);
    void findSteady(const ScopeControls& controls, const ScopeCapture& capture);
    void layOutTriggered(const std::array<double, 2>& offsets, double width, double height);
    void layOutSteady(const std::array<double, 2>& offsets, double width, double height);

    TriggerSearch triggers_;
    std::int32_t length_ = 10; ///< samples of a trace
    std::array<TriggeredBlock, 2> triggered_;
    std::array<ScopeFindings, 2> findings_;
    std::array<std::vector<PlotPoint>, 2> lines_;
    std::array<ScopeScale, 2> scales_;
    Axis timeAxis_{0, 0};
    SteadyBlock steady_;
    SteadyState steadyState_ = SteadyState::Off;
};

} // namespace sonotrace
