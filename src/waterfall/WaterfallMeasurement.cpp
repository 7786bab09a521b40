#include "waterfall/WaterfallMeasurement.h"

#include "base/Numbers.h"
#include "base/SampleRate.h"
#include "base/SystemLog.h"

#include <array>
#include <cstdio>

namespace sonotrace {

void WaterfallMeasurement::rightMouseDown(double x, double y) {
    systemLog("rightMouseDown %g %g", x, y);
    lastRightClickX_ = x;
}

WaterfallClick WaterfallMeasurement::mouseDown(double x, double y, double height) const {
    const double start = parameters_.waterfallStartFreq.load(std::memory_order_relaxed);
    const double end = parameters_.waterfallEndFreq.load(std::memory_order_relaxed);
    const auto span = static_cast<float>(end - start);
    const float hertzPerPixel = span / static_cast<float>(height);
    const auto frequency = static_cast<float>(y * static_cast<double>(hertzPerPixel) + start);
    systemLog("mouseDown %g  %g  %g  %g  ", y, static_cast<double>(frequency), static_cast<double>(span),
              static_cast<double>(hertzPerPixel));
    return {frequency, static_cast<float>(x - lastRightClickX_)};
}

std::string WaterfallMeasurement::setMouseHz(float frequency, float deltaX) const {
    const std::int32_t speedup = parameters_.waterfallSpeedup.load(std::memory_order_relaxed);
    const double length = parameters_.waterfallFftLen.load(std::memory_order_relaxed);
    const auto pixelsPerSecond = static_cast<double>(static_cast<float>(speedup * (kSampleRate / length)));
    const auto milliseconds =
        static_cast<double>(static_cast<float>(1000.0 * static_cast<double>(deltaX) / pixelsPerSecond));
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%d Hz  %g mSec", truncateToInt32(static_cast<double>(frequency)),
                  milliseconds);
    systemLog("setMouseHz %g Hz deltaX %g  pixels/sec %g   milliseconds: %g ", static_cast<double>(frequency),
              static_cast<double>(deltaX), pixelsPerSecond, milliseconds);
    return text.data();
}

} // namespace sonotrace
