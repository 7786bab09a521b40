#include "spectrum/SpectrumGrid.h"

#include "base/Numbers.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace sonotrace {

namespace {

constexpr std::int32_t kColumnsPerLine = 50; ///< about
constexpr int kDecibelLines = 10;
constexpr double kTopLine = 22.37; ///< height of the highest decibel line, in units of natural logarithm

std::vector<FrequencyLine> frequencyLines(const SpectrumGeometry& geometry, const SpectrumDisplay& display) {
    std::vector<FrequencyLine> lines;
    // Narrower plots have no room for a line; the spacing would not be finite.
    if (geometry.width < kColumnsPerLine)
        return lines;
    const std::int32_t count = geometry.width / kColumnsPerLine;
    const double spacing = static_cast<double>(geometry.width) / count;
    for (std::int32_t i = 0; i <= count; ++i) {
        const double offset = i * spacing;
        double frequency = geometry.hzPerPixel * offset + display.spectrumStartFreq;
        // The logarithmic labels name the place a line further on and a margin back.
        if (display.logMode != 0)
            frequency = std::pow(10.0, ((i + 1) * spacing - geometry.left) * geometry.logStep);
        lines.push_back({geometry.left + offset + 2.0,
                         kTopLine * geometry.yScale,
                         geometry.yFloor,
                         {geometry.left + offset - 10.0, geometry.yFloor - SpectrumGrid::kLabelDrop,
                          std::to_string(truncateToInt32(frequency))}});
    }
    return lines;
}

std::vector<DecibelLine> decibelLines(const SpectrumGeometry& geometry) {
    std::vector<DecibelLine> lines;
    for (int k = 0; k < kDecibelLines; ++k) {
        const double y = (k * kTenDecibels + kFloorLine) * geometry.yScale;
        std::array<char, 16> text{};
        std::snprintf(text.data(), text.size(), "%4d dB", -100 + 10 * k);
        lines.push_back({y,
                         static_cast<double>(geometry.left + 1),
                         static_cast<double>(geometry.right + 1),
                         {static_cast<double>(geometry.left - 45), y - 4.0, text.data()}});
    }
    return lines;
}

} // namespace

SpectrumGrid spectrumGrid(const SpectrumGeometry& geometry, const SpectrumDisplay& display) {
    if (display.gridMode == 0)
        return {};
    return {frequencyLines(geometry, display), decibelLines(geometry)};
}

} // namespace sonotrace
