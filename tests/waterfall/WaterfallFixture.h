#pragma once

#include "waterfall/WaterfallAnalysis.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace sonotrace {

/// What a line left on the system log.
struct LoggedLine {
    double minSum, maxSum, minV, maxV;
};

/// A whole waterfall without a window.
struct Waterfall {
    WaterfallParameters parameters;
    DeferredLog log;
    WaterfallImage image{parameters, log};
    WaterfallAnalysis analysis{parameters, image, log};

    /// The length in force, the one that the next line takes up, and the lines a frame.
    void setFrames(double length, std::int32_t requestedLog2, std::int32_t speedup) {
        parameters.waterfallFftLen = length;
        parameters.fftSizeLog2 = requestedLog2;
        parameters.waterfallSpeedup = speedup;
    }

    void setLimits(float minDB, float maxDB) {
        parameters.waterfallMinDB = minDB;
        parameters.waterfallMaxDB = maxDB;
    }

    /// Pixel of the picture as 0xAABBGGRR.
    std::uint32_t pixel(std::int32_t row, std::int32_t column) const {
        std::vector<std::uint8_t> line(ScrollingBitmap::kBytesPerRow);
        image.copyRows(row, 1, ScrollingBitmap::kWidth, line.data(), ScrollingBitmap::kBytesPerRow);
        std::uint32_t word = 0;
        std::memcpy(&word, line.data() + std::ptrdiff_t{4} * column, sizeof(word));
        return word;
    }

    /// The lines drawn since the last call.
    std::vector<LoggedLine> loggedLines() {
        testing::internal::CaptureStderr();
        log.write();
        std::istringstream written(testing::internal::GetCapturedStderr());
        std::vector<LoggedLine> lines;
        for (std::string text; std::getline(written, text);) {
            LoggedLine line{};
            if (std::sscanf(text.c_str(), "minSum:%lg  maxSum:%lg  minV:%lg  maxV:%lg", &line.minSum,
                            &line.maxSum, &line.minV, &line.maxV) == 4)
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
