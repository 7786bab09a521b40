#include "waterfall/WaterfallMeasurement.h"

#include "base/Numbers.h"
#include "base/SampleRate.h"
#include "base/SystemLog.h"

#include <algorithm>
#include <array>
#include <cmath>
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
    const double slowSamples = parameters_.slowSamples();
    double rate = speedup * (kSampleRate / length);
    if (slowSamples > 0.0) // no line is faster than its own
        rate = std::min(rate, kSampleRate / slowSamples);
    const auto pixelsPerSecond = static_cast<double>(static_cast<float>(rate));
    const auto milliseconds =
        static_cast<double>(static_cast<float>(1000.0 * static_cast<double>(deltaX) / pixelsPerSecond));
    systemLog("setMouseHz %g Hz deltaX %g  pixels/sec %g   milliseconds: %g ", static_cast<double>(frequency),
              static_cast<double>(deltaX), pixelsPerSecond, milliseconds);
    std::array<char, 64> hertz{"no frequency"};
    if (std::isfinite(frequency))
        std::snprintf(hertz.data(), hertz.size(), "%d Hz", truncateToInt32(static_cast<double>(frequency)));
    std::array<char, 64> time{};
    if (std::isfinite(milliseconds))
        std::snprintf(time.data(), time.size(), "%g mSec", milliseconds);
    else
        std::snprintf(time.data(), time.size(), "%g columns (no time while paused)",
                      static_cast<double>(deltaX));
    return std::string(hertz.data()) + "  " + time.data();
}

} // namespace sonotrace
