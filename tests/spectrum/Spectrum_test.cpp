#include "spectrum/SpectrumAnalysis.h"

#include "base/FftWindows.h"
#include "spectrum/SpectrumFft.h"
#include "spectrum/SpectrumGrid.h"
#include "spectrum/SpectrumTrace.h"
#include "support/RenderBench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace sonotrace {
namespace {

/// The analysis, and of each spectrum it has announced the sum of the first 64 powers.
struct Bench {
    std::vector<double> sums;
    SpectrumAnalysis analysis{[this] {
        const auto power = analysis.powerSpectrum().first(64);
        sums.push_back(std::accumulate(power.begin(), power.end(), 0.0));
    }};
};

TEST(SpectrumAnalysis, EverySpectrumIsThatOfItsOwnBlockWhereverTheRingWraps) {
    std::vector<std::int16_t> signal(std::size_t{96} * 22050); // a little over two rings
    std::vector<double> energies(signal.size() / 128 + 1);
    std::mt19937 random;
    for (std::size_t i = 0; i < signal.size(); i += 2) {
        signal[i] = static_cast<std::int16_t>(random());
        energies[i / 128] += std::pow(signal[i], 2);
    }
    Bench bench;
    bench.analysis.setFftSize(64);
    for (std::span<const std::int16_t> rest(signal); !rest.empty(); rest = rest.subspan(22050))
        bench.analysis.capture(rest.first(22050));
    ASSERT_EQ(bench.sums.size(), 16537U); // the last block waits for a sample more
    for (std::size_t i = 0; i < bench.sums.size(); ++i)
        ASSERT_NEAR(bench.sums[i] / (64 * energies[i]), 1.0, 1e-9) << i;
}

TEST(SpectrumAnalysis, SamplesAreAveragedBeforeTheTransformWhateverChangesBetweenBlocks) {
    // Size, window and averages set; frames of what left and right; spectra so far, power of bin 0.
    const std::tuple<const char*, int, int, int, std::size_t, int, int, std::size_t, double> steps[] = {
        {"a block waits", 64, 0, 1, 64, 300, 0, 0, 0},
        {"for a sample more", 64, 0, 1, 1, 300, 0, 1, 19200.0 * 19200},
        {"no blocks are one", 64, 0, 0, 64, 300, 0, 2, 19200.0 * 19200},
        {"two of four", 64, 0, 4, 128, 300, 0, 2, 19200.0 * 19200},
        // The half sine's sum is cot(pi / 128).
        {"of samples, not of powers, and for another window", 64, 4, 4, 128, -100, 0, 3, 16593796.462927587},
        {"two of four once more", 64, 0, 4, 128, 300, 0, 3, 16593796.462927587},
        {"a new size drops the sum, but not the count", 128, 0, 4, 256, 300, 0, 4, 19200.0 * 19200},
        {"loud channels wrap around", 128, 0, 1, 256, 20000, 20000, 6, 25536.0 * 128 * 25536 * 128},
    };
    Bench bench;
    testing::internal::CaptureStderr();
    for (const auto& [what, points, window, numAvg, frames, left, right, spectra, power] : steps) {
        for (const std::int32_t size : {points, 0, -64, 1, 32, 65, 262144, INT32_MIN, INT32_MAX})
            bench.analysis.setFftSize(size); // but for the first they are not in the menu
        bench.analysis.setWindowType(window);
        bench.analysis.setNumAvg(numAvg);
        std::vector<std::int16_t> signal(2 * frames + 1, static_cast<std::int16_t>(left)); // and half a frame
        for (std::size_t i = 1; i < signal.size(); i += 2)
            signal[i] = static_cast<std::int16_t>(right);
        bench.analysis.capture(signal);
        EXPECT_EQ(bench.sums.size(), spectra) << what;
        EXPECT_NEAR(bench.analysis.powerSpectrum()[0], power, 1e-3) << what;
    }
    EXPECT_DOUBLE_EQ(bench.analysis.maxPower(), 25536.0 * 128 * 25536 * 128);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "BuildNewWindowCoeffs 0 N=64\nBuildNewWindowCoeffs 4 N=64\n"
              "BuildNewWindowCoeffs 0 N=64\nBuildNewWindowCoeffs 0 N=128\n");
}

// Of the textbook routine, operation by operation, with 64-bit mantissas.
TEST(SpectrumAnalysis, SaysHowFarTheNextSpectrumIs) {
    Bench bench;
    bench.analysis.setFftSize(4096);
    bench.analysis.setNumAvg(16);
    bench.analysis.capture(std::vector<std::int16_t>(2 * 11025)); // two blocks and 2833 samples
    SpectrumProgress progress = bench.analysis.progress();
    EXPECT_EQ(std::pair(progress.block, progress.blocks), std::pair(3, 16));
    EXPECT_DOUBLE_EQ(progress.secondsLeft, (16 * 4096 + 1 - 11025) / 44100.0);
    bench.analysis.setNumAvg(0);
    progress = bench.analysis.progress();
    EXPECT_EQ(std::pair(progress.block, progress.blocks), std::pair(3, 3)) << "the next block ends it";
    EXPECT_DOUBLE_EQ(progress.blockSeconds, 4096 / 44100.0);
}

TEST(SpectrumFft, EverySizeHasTheBitsOfTheTextbookRoutine) {
    if (std::numeric_limits<long double>::digits != 64)
        GTEST_SKIP() << "another long double";
    SpectrumFft fft; // one for all: a size must not depend on those before it
    using Pin = std::pair<std::size_t, std::uint32_t>;
    for (const auto& [points, bits] : {Pin{64, 0xB5F9B331}, Pin{1024, 0xD75D1996}, Pin{512, 0x0AE239AB},
                                       Pin{131072, 0x20507B8C}, Pin{32768, 0x1B86D765}}) {
        std::vector<double> data(2 * points);
        std::uint32_t state = 12345;
        for (double& value : data) { // with thirds, so that every operation has something to round
            state = state * 1664525U + 1013904223U;
            value = (static_cast<double>(state >> 16U) - 32768.0) / 3.0;
        }
        fft.transform(data);
        std::vector<std::int16_t> words(4 * data.size());
        std::memcpy(words.data(), data.data(), 8 * data.size());
        EXPECT_EQ(checksum(words), bits) << points;
    }
}

// Computed with 200 bits and rounded where the sums round. Weights 97 and 965 of 1000 come out different with
// any other order of the sums, with the quotient i/n taken first, and with a double instead of a single
// quotient.
TEST(FftWindows, EachWindowIsExactToTheBit) {
    const std::array<double, 3> expected[] = {
        {1.0, 1.0, 1.0}, // of a type that is none
        {1.0, 1.0, 1.0},
        {0.0, 0.09002394533727381, 0.012041619030626283},
        {0.08000000000000002, 0.16282202971029192, 0.0910782895081762},
        {1.0, 0.9952991872862462, 0.5694168978716214},
        {0.0, 0.3000399062412762, 0.10973431109104521},
        {0.0, 0.3000399062412762, 0.10973431109104521},
        {-1.3877787807814457e-17, 0.03759537919123517, 0.004427783227907836},
        {-2.42861286636753e-17, 0.009046290045032086, 0.0006559755533979989},
        {0.0003628000000000381, 0.012268868793695471, 0.0013761826378495025},
        {-0.0028000000000000316, -0.06745623541308673, -0.008894603688157258},
        {1.0, 1.0, 1.0}, // nor is this
    };
    std::vector<double> weights(1000);
    for (const auto& some : expected) {
        const auto type = static_cast<FftWindowType>(&some - expected - 1);
        BuildNewWindowCoeffs(type, 1000, weights.data());
        EXPECT_EQ((std::array{weights[0], weights[97], weights[965]}), some) << type;
    }
}

// Trace and grids. The numbers were computed with 200 bits by a program of its own.

TEST(SpectrumTrace, ColumnsHoldThePowerOfTheirBins) {
    SpectrumTrace trace; // one for all: nothing is left of the last picture
    // Looks up some columns by their x; the last one given is the trace's last.
    const auto expect = [&trace](const char* what, const PlotRect& bounds, SpectrumDisplay display,
                                 double fftSize, const std::vector<PlotPoint>& points) {
        SCOPED_TRACE(what);
        const SpectrumGeometry geometry = spectrumGeometry(bounds, display, fftSize);
        // Rising, as far as there is room, and nothing from the transform's end on.
        std::vector<double> power(40000);
        for (std::size_t i = 0; i < std::min(power.size(), static_cast<std::size_t>(fftSize)); ++i)
            power[i] = 1000.0 * std::pow(i + 1, 2);
        trace.build(geometry, display, power, fftSize);
        const std::vector<PlotPoint> line(trace.line().begin(), trace.line().end());
        display.fillMode = 1;
        trace.build(geometry, display, power, fftSize);
        EXPECT_TRUE(trace.line().empty());
        ASSERT_EQ(line.size(), trace.bars().size() + 1);
        EXPECT_EQ(line[0], line[1]);
        EXPECT_EQ(line.back().x, points.back().x);
        for (const auto& [x, y] : points) {
            const auto column = static_cast<std::size_t>(x - line[0].x);
            EXPECT_DOUBLE_EQ(line[column + 1].y, y) << x;
            const double height = line[column + 1].y - geometry.yFloor;
            EXPECT_EQ(trace.bars()[column], (PlotRect{x, geometry.yFloor, 1, height})) << x;
        }
    };
    constexpr double kFloor = 20.290499999999998;
    const PlotRect small{0, 0, 250, 300};
    const PlotRect large{0, 0, 630, 400};
    expect("a bin is many columns wide, and the border counts in both", large, {0, 5000}, 64,
           {{118, 130.6795414699373}, {119, 156.75243565136972}, {549, 198.053447420364}});
    expect("a column sums eight bins, in a view that starts between points", {10.5, 99, 630.25, 400},
           {0, 5000}, 32768, {{60, 27.054}, {62, 42.00748405099794}, {559, 228.48541864910663}});
    expect("columns beyond the last bin hold power 1", small, {40000, 48000}, 64,
           {{50, 197.09381598936196}, {111, 199.070515028093}, {112, kFloor}, {169, kFloor}});
    expect("a logarithmic axis runs over 4.3 decades whatever the frequencies", large, {0, 5000, 0, 1}, 4096,
           {{50, 27.054}, {250, 48.07751793194879}, {549, 296.83183397792214}});
    expect("a reversed axis shows single bins and sinks to the floor at each border", small, {5000, 0}, 64,
           {{50, 148.54008556527302}, {71, kFloor}, {169, 98.00965610245298}});
}

TEST(SpectrumGrid, LinesStandAboutFiftyColumnsAndTenDecibelsApart) {
    const std::tuple<double, SpectrumDisplay, const char*> rows[] = {
        {250, {0, 5000, 0, 0, 1}, "0 2500 5000 "},
        {630, {20, 20000, 0, 0, 1}, "20 2018 4016 6014 8012 10010 12008 14006 16004 18002 20000 "},
        // On the logarithmic axis a label names the next line's place less the left margin.
        {630, {20, 20000, 0, 1, 1}, "1 2 7 19 52 141 380 1023 2754 7413 19952 "},
        {179, {0, 5000, 0, 0, 1}, ""},
        {250, {0, 5000, 0, 0, 0}, ""},
    };
    for (const auto& [viewWidth, display, labels] : rows) {
        const SpectrumGrid grid =
            spectrumGrid(spectrumGeometry({0, 0, viewWidth, 300}, display, 64), display);
        const double spacing = (viewWidth - 130) / (static_cast<double>(grid.frequencyLines.size()) - 1);
        std::string frequencies;
        for (double offset = 0; const FrequencyLine& line : grid.frequencyLines) {
            EXPECT_EQ(std::tuple(line.x, line.label.x), std::tuple(52 + offset, 40 + offset));
            EXPECT_NEAR(line.top, 271.7955, 1e-9);
            EXPECT_NEAR(line.bottom, line.label.y + 18, 1e-9);
            frequencies += line.label.text + ' ';
            offset += spacing;
        }
        EXPECT_EQ(frequencies, labels);
        std::string levels;
        for (double y = 20.2905; const DecibelLine& line : grid.decibelLines) {
            EXPECT_NEAR(line.y, y, 1e-9);
            EXPECT_EQ(line.label.y, line.y - 4);
            EXPECT_EQ(std::tuple(line.left, line.right, line.label.x), std::tuple(51.0, viewWidth - 79, 5.0));
            levels += line.label.text;
            y += 27.945;
        }
        const char* const all = "-100 dB -90 dB -80 dB -70 dB -60 dB -50 dB -40 dB -30 dB -20 dB -10 dB";
        EXPECT_EQ(levels, display.gridMode == 0 ? "" : all);
    }
}

TEST(SpectrumPlot, HostileSettingsNeverReachThePainter) {
    const double values[] = {0, -5, 131, 250, 1e9, 1e300, -1e300, HUGE_VAL, NAN};
    SpectrumTrace trace;
    for (const double start : values) {
        for (const double end : values) {
            const SpectrumDisplay display{start, end, 0, 0, 1};
            const SpectrumGeometry geometry = spectrumGeometry({0, 0, 250, 200}, display, 64);
            trace.build(geometry, display, std::vector<double>(64, 1e9), 64);
            double farthest = 0; // turns into what is not finite, and stays it
            for (const PlotPoint& point : trace.line())
                farthest += std::abs(point.x) + std::abs(point.y);
            for (const FrequencyLine& line : spectrumGrid(geometry, display).frequencyLines)
                farthest += std::abs(line.x) + std::abs(line.top) + std::abs(line.label.x);
            EXPECT_LT(farthest, 1e7) << start << " to " << end;
        }
    }
}

} // namespace
} // namespace sonotrace
