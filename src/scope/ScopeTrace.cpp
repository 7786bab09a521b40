#include "scope/ScopeTrace.h"

#include "platform/StreamDescription.h"

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

/// A view's measure; one that no screen has counts for nothing.
double viewSize(double size) {
    return size >= 0.0 && size <= kLargestView ? size : 0.0;
}

/// Painters lose their way with coordinates far outside the view, where nobody would see the trace anyway.
double visibleOffset(double offset) {
    return std::isnan(offset) ? 0.0 : std::clamp(offset, -kLargestView, kLargestView);
}

} // namespace

ScopeTrace::ScopeTrace() {
    for (auto& line : lines_)
        line.reserve(kLongestTrace + 1);
}

void ScopeTrace::build(const ScopeControls& controls, const ScopeCapture& capture, double width,
                       double height) {
    const std::int32_t length = displayBuflength(controls.sweep);
    const double xStep = viewSize(width) / length;
    const double yScale = 0.25 * viewSize(height) / kSamplesPerQuarter;
    std::int32_t start = 0;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const double baseLine = visibleOffset(controls.offset[i]) + kBaseLines[i] * viewSize(height);
        const TriggerSearch::Trace trace =
            triggers_.search(i, capture.display(static_cast<std::int32_t>(i)),
                             {controls.trigger[i], controls.triggerPolarity[i]}, length, start);
        start = trace.triggerBase;
        findings_[i] = {trace.held, std::clamp(kCaptureFramesPerBuffer - start, 0, length)};

        const auto samples = trace.samples.subspan(static_cast<std::size_t>(trace.triggerBase),
                                                   static_cast<std::size_t>(length));
        std::vector<PlotPoint>& line = lines_[i];
        line.clear();
        line.push_back({0.0, samples[0] * yScale + baseLine});
        double column = 0.0;
        for (const std::int16_t sample : samples) {
            line.push_back({column * xStep, sample * yScale + baseLine});
            column += 1.0;
        }
    }
}

} // namespace sonotrace
