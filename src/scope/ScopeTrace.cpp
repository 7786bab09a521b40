#include "scope/ScopeTrace.h"

#include "base/SampleRate.h"
#include "measure/BandLimited.h"
#include "platform/StreamDescription.h"
#include "scope/SteadyTrigger.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace sonotrace {

namespace {

constexpr std::size_t kLongestTrace = 10000;
constexpr std::array<double, 2> kBaseLines = {0.75, 0.25}; ///< of the view's height
constexpr double kSamplesPerQuarter =
    35000.0;                         ///< sample units in a quarter of the height; full scale is less
constexpr double kLargestView = 1e6; ///< points
constexpr double kFullScale = 32768.0;
constexpr double kLargestShown = 32767.0; ///< sample units, after the gain

/// A view's measure; one that no screen has counts for nothing.
double viewSize(double size) {
    return size >= 0.0 && size <= kLargestView ? size : 0.0;
}

/// Painters lose their way with coordinates far outside the view, where nobody would see the trace anyway.
double visibleOffset(double offset) {
    return std::isnan(offset) ? 0.0 : std::clamp(offset, -kLargestView, kLargestView);
}

double pointsPerUnit(double height) {
    return 0.25 * viewSize(height) / kSamplesPerQuarter;
}

} // namespace

ScopeLevels visibleLevels(const ScopeScale& scale, double height) {
    const double swing = std::abs(scale.rise) * scale.most;
    const double lower = std::clamp(scale.baseLine - swing, 0.0, height);
    const double upper = std::clamp(scale.baseLine + swing, 0.0, height);
    return {{scale.levelAt(lower), scale.levelAt(upper)}, lower, height - upper};
}

ScopeTrace::ScopeTrace() {
    for (auto& line : lines_)
        line.reserve(kLongestTrace + 1);
    for (auto& block : triggered_)
        block.samples.reserve(kLongestTrace);
}

void ScopeTrace::build(const ScopeControls& controls, const ScopeCapture& capture, double width,
                       double height) {
    length_ = displayBuflength(controls.sweep);
    if (controls.steady != 0)
        findSteady(controls, capture);
    else
        findTriggers(controls, capture);
    layOut(controls.offset, width, height);
}

void ScopeTrace::layOut(const std::array<double, 2>& offsets, double width, double height) {
    if (steadyState_ == SteadyState::Off)
        layOutTriggered(offsets, width, height);
    else
        layOutSteady(offsets, width, height);
}

ScopeShown ScopeTrace::shown(std::int32_t ch) const {
    const auto i = static_cast<std::size_t>(ch == 0 ? 0 : 1);
    if (steadyState_ != SteadyState::Off)
        return {steady_.raw[i].samples, steady_.raw[i].number, steady_.crossing};
    const TriggeredBlock& block = triggered_[i];
    return {block.raw.samples, block.raw.number, static_cast<double>(block.start)};
}

void ScopeTrace::keep(RawBlock& raw, const ScopeCapture& capture, std::size_t i) {
    const auto samples = capture.raw(static_cast<std::int32_t>(i));
    raw.samples.assign(samples.begin(), samples.end());
    raw.number = capture.blocks();
}

void ScopeTrace::findTriggers(const ScopeControls& controls, const ScopeCapture& capture) {
    steadyState_ = SteadyState::Off;
    std::int32_t start = 0;
    for (std::size_t i = 0; i < triggered_.size(); ++i) {
        const TriggerSearch::Trace trace =
            triggers_.search(i, capture.display(static_cast<std::int32_t>(i)),
                             {controls.trigger[i], controls.triggerPolarity[i]}, length_, start);
        start = trace.triggerBase;
        TriggeredBlock& block = triggered_[i];
        const auto samples = trace.samples.subspan(static_cast<std::size_t>(trace.triggerBase),
                                                   static_cast<std::size_t>(length_));
        block.samples.assign(samples.begin(), samples.end());
        block.start = trace.triggerBase;
        if (!trace.held || !block.hasTriggered)
            block.scaling = capture.scaling(static_cast<std::int32_t>(i));
        if (!trace.held) {
            block.hasTriggered = true;
            keep(block.raw, capture, i);
        }
        findings_[i] = {trace.held, std::clamp(kCaptureFramesPerBuffer - start, 0, length_)};
    }
}

void ScopeTrace::layOutTriggered(const std::array<double, 2>& offsets, double width, double height) {
    const double xStep = viewSize(width) / length_;
    const double yScale = pointsPerUnit(height);
    timeAxis_ = {0.0, length_ * 1000.0 / kSampleRate};
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const std::vector<std::int16_t>& samples = triggered_[i].samples;
        place(offsets[i], i, triggered_[i].scaling, height);
        const double baseLine = scales_[i].baseLine;
        std::vector<PlotPoint>& line = lines_[i];
        line.clear();
        if (samples.empty())
            continue;
        line.push_back({0.0, samples[0] * yScale + baseLine});
        double column = 0.0;
        for (const std::int16_t sample : samples) {
            line.push_back({column * xStep, sample * yScale + baseLine});
            column += 1.0;
        }
    }
}

void ScopeTrace::place(double offset, std::size_t i, const ScopeScaling& scaling, double height) {
    const double swing = kFullScale * scaling.gain * pointsPerUnit(height);
    scales_[i] = {visibleOffset(offset) + kBaseLines[i] * viewSize(height), scaling.invert ? swing : -swing,
                  kLargestShown / kFullScale / scaling.gain};
}

/// Where there is signal on both sides for the whole trace, or else anywhere.
void ScopeTrace::findSteady(const ScopeControls& controls, const ScopeCapture& capture) {
    const std::size_t i = controls.steady == 1 ? 0 : 1;
    const auto signal = capture.display(static_cast<std::int32_t>(i)).first<kScopeSignal>();
    const TriggerCondition condition{controls.trigger[i], controls.triggerPolarity[i]};
    const double half = 0.5 * length_;
    constexpr double kLast = kScopeSignal - 1.0;
    std::optional<double> crossing = findSteadyCrossing(signal, condition, half, kLast - half);
    steadyState_ = crossing ? SteadyState::Centred : SteadyState::Cut;
    if (!crossing)
        crossing = findSteadyCrossing(signal, condition, 0.0, kLast);
    if (!crossing) {
        steadyState_ = SteadyState::Held;
        return;
    }
    steady_.crossing = *crossing;
    for (const std::int32_t ch : {0, 1}) {
        const auto channel = static_cast<std::size_t>(ch);
        std::ranges::copy(capture.display(ch).first<kScopeSignal>(), steady_.samples[channel].begin());
        steady_.scaling[channel] = capture.scaling(ch);
        keep(steady_.raw[channel], capture, channel);
    }
}

/// The lines go through the samples where these are denser than the view's points, and else through the
/// band-limited signal at each of the points: straight lines from sample to sample would look different in
/// each block.
void ScopeTrace::layOutSteady(const std::array<double, 2>& offsets, double width, double height) {
    const double length = length_;
    const double start = steady_.crossing - 0.5 * length;
    const double points = viewSize(width);
    const double step = length > points ? 1.0 : length / points; // in samples
    const double yScale = pointsPerUnit(height);
    const double half = 0.5 * length * 1000.0 / kSampleRate;
    timeAxis_ = {-half, half};
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        place(offsets[i], i, steady_.scaling[i], height);
        const std::span<const std::int16_t> samples = steady_.samples[i];
        std::vector<PlotPoint>& line = lines_[i];
        line.clear();
        const double first = step < 1.0 ? start : std::ceil(start);
        for (double point = 0.0; point * step <= length; point += 1.0) {
            const double at = first + point * step;
            if (at >= 0.0 && at <= kScopeSignal - 1.0)
                line.push_back({(at - start) / length * points,
                                bandLimited(samples, at) * yScale + scales_[i].baseLine});
        }
    }
}

std::optional<double> ScopeTrace::levelAt(std::int32_t ch, double x) const {
    const std::span<const PlotPoint> points = line(ch);
    const auto right = std::ranges::lower_bound(points, x, {}, &PlotPoint::x);
    if (right == points.end() || (right == points.begin() && right->x > x))
        return std::nullopt;
    double y = right->y;
    if (right->x > x) {
        const PlotPoint& left = *std::prev(right);
        y = left.y + (x - left.x) / (right->x - left.x) * (right->y - left.y);
    }
    return scale(ch).levelAt(y);
}

} // namespace sonotrace
