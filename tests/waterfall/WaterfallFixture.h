#pragma once

#include "waterfall/WaterfallAnalysis.h"

#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace sonotrace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// The extremes of a line's magnitudes.
struct LoggedLine {
    double smallest, largest;
    bool operator==(const LoggedLine&) const = default;
};

/// A whole waterfall without a window, in grey. Every bin is a row or two of its view, so that a line's log
/// tells the extremes of all of them.
struct Waterfall {
    WaterfallParameters parameters;
    DeferredLog log;
    WaterfallImage image{parameters, log};
    std::chrono::milliseconds now{};
    std::function<void()> clockIsRead = [] {}; ///< before each line
    WaterfallAnalysis analysis{parameters, image, log, [this] {
                                   clockIsRead();
                                   return std::chrono::steady_clock::time_point(now);
                               }};

    template <typename... Values>
    explicit Waterfall(Values... values) {
        set(values...);
    }

    /// Sane values: the length in force, the one that the next line takes up, the lines a frame, and what the
    /// view shows.
    void set(double length = 1024.0, std::int32_t requestedLog2 = 10, std::int32_t speedup = 1,
             double startFreq = 0.0, double endFreq = 22050.0) {
        parameters.waterfallFftLen = length;
        parameters.fftSizeLog2 = requestedLog2;
        parameters.waterfallSpeedup = speedup;
        parameters.waterfallWindowType = 1;
        parameters.colorWaterfallPlot = 0;
        parameters.channel = ChannelFold::Sum;
        parameters.paused = 0;
        parameters.slowSeconds = 0.0;
        setFrequencies(startFreq, endFreq);
        setLimits(50.0F, 100.0F);
        image.setBounds(800.0, 1000.0);
    }

    void setFrequencies(double start, double end) {
        parameters.waterfallStartFreq = start;
        parameters.waterfallEndFreq = end;
    }

    void setLimits(float minDB, float maxDB) {
        parameters.waterfallMinDB = minDB;
        parameters.waterfallMaxDB = maxDB;
    }

    /// Pixel of the picture as 0xAABBGGRR.
    std::uint32_t pixel(std::int32_t row, std::int32_t column) const {
        std::array<std::uint32_t, ScrollingBitmap::kWidth> line;
        image.copyRows(row, 1, ScrollingBitmap::kWidth, reinterpret_cast<std::uint8_t*>(line.data()),
                       ScrollingBitmap::kBytesPerRow);
        return line[static_cast<std::size_t>(column)];
    }

    /// The lines drawn since the last call.
    std::vector<LoggedLine> loggedLines() {
        testing::internal::CaptureStderr();
        log.write();
        std::istringstream written(testing::internal::GetCapturedStderr());
        std::vector<LoggedLine> lines;
        for (std::string text; std::getline(written, text);) {
            LoggedLine line{};
            if (std::sscanf(text.c_str(), "minSum:%lg  maxSum:%lg", &line.smallest, &line.largest) == 2)
                lines.push_back(line);
        }
        return lines;
    }
};

/// Interleaved stereo whose sum is a sine of a whole number of periods in `period` samples.
inline std::vector<std::int16_t> tone(int cycles, int period, double amplitude, int frames) {
    std::vector<std::int16_t> samples;
    for (int n = 0; n < frames; ++n) {
        const double phase = 6.283185307179586 * cycles * (n % period) / period;
        samples.push_back(static_cast<std::int16_t>(std::lround(amplitude * std::sin(phase)) + 300));
        samples.push_back(-300);
    }
    return samples;
}

} // namespace sonotrace
