#include "spectrum/SpectrumAnalysis.h"

#include "base/FftWindows.h"
#include "spectrum/SpectrumFft.h"
#include "spectrum/SpectrumGrid.h"
#include "spectrum/SpectrumTrace.h"
#include "support/RenderBench.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

namespace sonotrace {
namespace {

constexpr std::size_t kBufferFrames = 11025;

/// The analysis and how many spectra it has announced.
struct Bench {
    int spectra = 0;
    SpectrumAnalysis analysis{[this] { ++spectra; }};

    explicit Bench(std::int32_t fftSize) { analysis.setFftSize(fftSize); }

    void capture(std::size_t frames, std::int16_t left = 0, std::int16_t right = 0) {
        std::vector<std::int16_t> buffer;
        for (std::size_t i = 0; i < frames; ++i)
            buffer.insert(buffer.end(), {left, right});
        analysis.capture(buffer);
    }

    double power(std::size_t bin) const { return analysis.powerSpectrum()[bin]; }
};

TEST(SpectrumAnalysis, ABlockIsAnalysedWhenMoreThanABlockWaits) {
    Bench small(64);
    small.capture(64);
    EXPECT_EQ(small.spectra, 0);
    small.capture(kBufferFrames - 64);
    EXPECT_EQ(small.spectra, 172); // 17 samples are left
    small.capture(48);
    EXPECT_EQ(small.spectra, 173);

    // 307 samples are left of the first three buffers, and as many more of each three after, until the
    // surplus has grown to a whole buffer. The ring wraps in buffer 46.
    Bench large(32768);
    int buffers = 0;
    for (const auto& [count, spectra] :
         {std::pair{2, 0}, {3, 1}, {5, 1}, {6, 2}, {45, 15}, {104, 34}, {106, 35}, {107, 36}}) {
        for (; buffers < count; ++buffers)
            large.capture(kBufferFrames);
        EXPECT_EQ(large.spectra, spectra) << count;
    }
}

TEST(SpectrumAnalysis, EverySpectrumIsThatOfItsOwnBlockWhereverTheRingWraps) {
    constexpr std::size_t kPoints = 64;
    std::vector<double> sums; // of every block of the signal
    std::size_t block = 0;
    std::size_t wrong = 0;
    const SpectrumAnalysis* source = nullptr;
    SpectrumAnalysis analysis([&] {
        wrong += source->powerSpectrum()[0] != sums[block] * sums[block];
        ++block;
    });
    source = &analysis;
    analysis.setFftSize(kPoints);
    std::uint32_t state = 1;
    std::vector<std::int16_t> buffer(2 * kBufferFrames);
    for (std::size_t frame = 0; frame < 96 * kBufferFrames; ++frame) { // a little over two rings
        state = state * 1664525U + 1013904223U;
        const auto left = static_cast<std::int16_t>(state >> 16U);
        const auto right = static_cast<std::int16_t>(left / 2);
        buffer[frame % kBufferFrames * 2] = left;
        buffer[frame % kBufferFrames * 2 + 1] = right;
        if (frame % kPoints == 0)
            sums.push_back(0);
        const int sum = left + right; // wraps around beyond 16 bits
        sums.back() += sum > 32767 ? sum - 65536 : sum < -32768 ? sum + 65536 : sum;
        if (frame % kBufferFrames == kBufferFrames - 1)
            analysis.capture(buffer);
    }
    EXPECT_EQ(block, 16537U);
    EXPECT_EQ(wrong, 0U);
}

TEST(SpectrumAnalysis, AveragesSamplesBeforeTheTransform) {
    for (const auto& [numAvg, blocks] :
         {std::pair{1, 1}, {0, 1}, {-3, 1}, {INT32_MIN, 1}, {4, 4}, {250, 250}}) {
        Bench bench(64);
        bench.analysis.setNumAvg(numAvg);
        const auto frames = static_cast<std::size_t>(64 * blocks);
        bench.capture(frames / 2, 300, 0);
        bench.capture(frames / 2, -100, 0);
        EXPECT_EQ(bench.spectra, 0) << numAvg;
        bench.capture(1);
        EXPECT_EQ(bench.spectra, 1) << numAvg;
        // 64 times the mean of 100, not the mean of powers
        EXPECT_EQ(bench.power(0), 6400.0 * 6400.0) << numAvg;
    }
}

TEST(SpectrumAnalysis, ANewSizeDropsTheSumOfAnAverageButNotItsCount) {
    Bench bench(64);
    bench.analysis.setNumAvg(4);
    bench.capture(128 + 1, 300, 0); // two blocks counted, a sample over
    bench.analysis.setFftSize(128);
    bench.capture(256, 300, 0);
    EXPECT_EQ(bench.spectra, 1);
    EXPECT_EQ(bench.power(0), 19200.0 * 19200.0); // two blocks divided by four

    bench.capture(256, 300, 0);
    bench.analysis.setWindowType(4); // keeps both
    bench.capture(256, 300, 0);
    EXPECT_EQ(bench.spectra, 2);
    EXPECT_NEAR(bench.power(0), 597556659.1101931, 1e-3); // the half sine's sum is cot(pi / 256)
}

TEST(SpectrumAnalysis, WindowsAreBuiltWhenABlockNeedsThem) {
    testing::internal::CaptureStderr();
    Bench bench(64);
    bench.analysis.setWindowType(1);
    bench.analysis.setFftSize(128);
    bench.capture(128 + 1, 1000, 0); // both the size and the window are new to the first block
    const std::string line = "BuildNewWindowCoeffs 1 N=128\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), line + line);
}

TEST(SpectrumAnalysis, SizesOutsideTheMenuAndCapturesOfAnyLengthDoNoHarm) {
    Bench bench(64);
    for (const std::int32_t size : {0, -64, 1, 32, 65, 262144, INT32_MIN, INT32_MAX})
        bench.analysis.setFftSize(size);
    EXPECT_EQ(bench.analysis.fftSize(), 64.0);
    bench.analysis.capture({});
    bench.analysis.capture(std::vector<std::int16_t>(1, 5)); // half a frame
    bench.capture(65, 20000, 20000);                         // a constant -25536
    EXPECT_EQ(bench.power(0), 2670949564416.0);
    EXPECT_EQ(bench.analysis.maxPower(), 2670949564416.0);
    EXPECT_EQ(bench.analysis.minPower(), 0.0);
    bench.capture(600000, 2, 0); // more than the ring holds
    EXPECT_EQ(bench.power(0), 16384.0);
}

/// Points with thirds in them, so that every operation has something to round.
std::vector<double> noise(std::size_t points) {
    std::vector<double> data(2 * points);
    std::uint32_t state = 12345;
    for (double& value : data) {
        state = state * 1664525U + 1013904223U;
        value = (static_cast<double>(state >> 16U) - 32768.0) / 3.0;
    }
    return data;
}

// Of the textbook routine, operation by operation, with 64-bit mantissas.
TEST(SpectrumFft, EverySizeHasTheBitsOfTheTextbookRoutine) {
    if (std::numeric_limits<long double>::digits != 64)
        GTEST_SKIP() << "another long double";
    SpectrumFft fft; // one for all: a size must not depend on those before it
    using Pin = std::pair<std::size_t, std::uint32_t>;
    for (const auto& [points, bits] :
         {Pin{1, 0x0AC8A728}, Pin{64, 0xB5F9B331}, Pin{2, 0x5AB8E32B}, Pin{4, 0xE6F9F844},
          Pin{1024, 0xD75D1996}, Pin{512, 0x0AE239AB}, Pin{131072, 0x20507B8C}, Pin{32768, 0x1B86D765}}) {
        std::vector<double> data = noise(points);
        fft.transform(data);
        std::vector<std::int16_t> words(4 * data.size());
        std::memcpy(words.data(), data.data(), 8 * data.size());
        EXPECT_EQ(checksum(words), bits) << points;
    }
    std::vector<double> data = noise(2048);
    fft.transform(data);
    EXPECT_EQ(data[4094], 0x1.d13cf4fe7be19p+18);
    EXPECT_EQ(data[4095], -0x1.8d9b7bdd531dfp+17);
}

TEST(SpectrumFft, AgreesWithTheDefinition) {
    constexpr std::size_t kPoints = 64;
    const std::vector<double> source = noise(kPoints);
    std::vector<double> data = source;
    SpectrumFft().transform(data);
    for (std::size_t bin = 0; bin < kPoints; ++bin) {
        std::complex<double> sum(-data[2 * bin], -data[2 * bin + 1]);
        for (std::size_t i = 0; i < kPoints; ++i) {
            const double angle = 2 * std::numbers::pi * static_cast<double>(bin * i % kPoints) / kPoints;
            sum += std::complex(source[2 * i], source[2 * i + 1]) * std::polar(1.0, angle);
        }
        EXPECT_LT(std::abs(sum), 1e-8) << bin;
    }
    data = noise(48); // not a power of two: left as it is
    SpectrumFft().transform(data);
    EXPECT_EQ(data, noise(48));
}

// Computed with 200 bits and rounded where the sums round. Weights 97 and 965 of 1000 come out different with
// any other order of the sums, with the quotient i/n taken first, and with a double instead of a single
// quotient.
TEST(FftWindows, EachWindowIsExactToTheBit) {
    const double expected[][3] = {
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
    };
    std::vector<double> weights(1000);
    for (std::size_t type = 0; type < std::size(expected); ++type) {
        BuildNewWindowCoeffs(static_cast<FftWindowType>(type), 1000, weights.data());
        EXPECT_EQ(weights[0], expected[type][0]) << kFftWindowTitles[type];
        EXPECT_EQ(weights[97], expected[type][1]) << kFftWindowTitles[type];
        EXPECT_EQ(weights[965], expected[type][2]) << kFftWindowTitles[type];
    }
    for (const FftWindowType type : {-1, 10, 42, INT32_MIN, INT32_MAX}) {
        BuildNewWindowCoeffs(type, 1000, weights.data());
        EXPECT_EQ(weights, std::vector<double>(1000, 1.0)) << type;
    }
    for (const std::int64_t n : {0, -1})
        BuildNewWindowCoeffs(9, n, weights.data()); // writes nothing
    EXPECT_EQ(weights[0], 1.0);
}

// Trace and grids. The numbers were computed with 200 bits by a program of its own.

/// Power 1000 (i + 1)² in bin i, nothing from bin `fftSize` on.
std::vector<double> risingSpectrum(double fftSize) {
    std::vector<double> power(40000);
    for (std::size_t i = 0; i < static_cast<std::size_t>(fftSize); ++i)
        power[i] = 1000.0 * static_cast<double>(i + 1) * static_cast<double>(i + 1);
    return power;
}

SpectrumTrace traceOf(const PlotRect& bounds, const SpectrumDisplay& display, double fftSize) {
    SpectrumTrace trace;
    trace.build(spectrumGeometry(bounds, display, fftSize), display, risingSpectrum(fftSize), fftSize);
    return trace;
}

/// Looks up some columns of a trace, by their x; the last one given is the trace's last.
void expectPoints(const char* what, const SpectrumTrace& trace, const std::vector<PlotPoint>& expected) {
    SCOPED_TRACE(what);
    const std::span<const PlotPoint> line = trace.line();
    ASSERT_GE(line.size(), 2U);
    EXPECT_EQ(line[0], line[1]);
    EXPECT_EQ(line.back().x, expected.back().x);
    for (const PlotPoint& point : expected) {
        const auto column = static_cast<std::size_t>(point.x - line[0].x);
        ASSERT_LT(column + 1, line.size());
        EXPECT_DOUBLE_EQ(line[column + 1].y, point.y) << point.x;
    }
}

TEST(SpectrumTrace, ColumnsHoldThePowerOfTheirBins) {
    constexpr double kFloor = 20.290499999999998;
    const PlotRect small{0, 0, 250, 300};
    const PlotRect large{0, 0, 630, 400};
    expectPoints("a bin is many columns wide", traceOf(large, {0, 5000}, 64),
                 {{50, 130.6795414699373}, {118, 130.6795414699373}, {549, 198.053447420364}});
    expectPoints("and the border bins count in both", traceOf(large, {0, 5000}, 64),
                 {{119, 156.75243565136972}, {120, 153.13751012007953}, {549, 198.053447420364}});
    expectPoints("a column sums eight bins, in a view that starts between points",
                 traceOf({10.5, 99, 630.25, 400}, {0, 5000}, 32768),
                 {{60, 27.054}, {62, 42.00748405099794}, {559, 228.48541864910663}});
    expectPoints("columns beyond the last bin hold power 1", traceOf(small, {40000, 48000}, 64),
                 {{50, 197.09381598936196}, {111, 199.070515028093}, {112, kFloor}, {169, kFloor}});
    expectPoints("and power 1 stands above the floor of a small transform", traceOf(small, {40000, 48000}, 2),
                 {{169, 98.29781190085336}});
    expectPoints("a logarithmic axis runs over 4.3 decades whatever the frequencies",
                 traceOf(large, {0, 5000, 0, 1}, 4096),
                 {{50, 27.054}, {250, 48.07751793194879}, {549, 296.83183397792214}});
    expectPoints("a reversed axis shows single bins and sinks to the floor at each border",
                 traceOf(small, {5000, 0}, 64),
                 {{50, 148.54008556527302}, {71, kFloor}, {169, 98.00965610245298}});
    expectPoints("there is nothing below bin 0", traceOf(small, {-1000, 5000}, 64),
                 {{56, kFloor}, {57, 98.00965610245298}, {169, 148.54008556527302}});
}

TEST(SpectrumTrace, BarsStandOnTheFloor) {
    const SpectrumTrace trace = traceOf({0, 0, 250, 300}, {40000, 48000, 1}, 64);
    ASSERT_EQ(trace.bars().size(), 120U);
    EXPECT_DOUBLE_EQ(trace.bars()[61].y + trace.bars()[61].height, 199.070515028093);
    EXPECT_EQ(trace.bars()[62], (PlotRect{112, 20.290499999999998, 1, 0}));
    EXPECT_TRUE(trace.line().empty());
}

TEST(SpectrumTrace, ASpectrumShorterThanTheSizeChosenSinceIsReadAsFarAsItGoes) {
    const SpectrumDisplay display{0, 44000};
    const SpectrumGeometry geometry = spectrumGeometry({0, 0, 630, 400}, display, 131072);
    SpectrumTrace trace;
    trace.build(geometry, display, std::vector<double>(300, 1e9), 131072);
    EXPECT_GT(trace.line()[2].y, geometry.yFloor);
    EXPECT_EQ(trace.line()[4].y, geometry.yFloor);
    trace.build(geometry, display, {}, 131072);
    EXPECT_TRUE(trace.line().empty());
}

TEST(SpectrumPlot, HostileSettingsNeverReachThePainter) {
    const double values[] = {0, -5, 131, 250, 1e9, 1e300, -1e300, HUGE_VAL, std::nan("")};
    const auto expectPaintable = [](const PlotRect& bounds, const SpectrumDisplay& display) {
        const SpectrumTrace trace = traceOf(bounds, display, 64);
        const SpectrumGrid grid = spectrumGrid(spectrumGeometry(bounds, display, 64), display);
        double farthest = 0; // turns into what is not finite, and stays it
        for (const PlotPoint& point : trace.line())
            farthest += std::abs(point.x) + std::abs(point.y);
        for (const FrequencyLine& line : grid.frequencyLines)
            farthest += std::abs(line.x) + std::abs(line.top) + std::abs(line.label.x);
        EXPECT_LT(farthest, 1e7) << display.spectrumStartFreq << " to " << display.spectrumEndFreq << " in "
                                 << bounds.width << " by " << bounds.height;
    };
    for (const double start : values) {
        for (const double end : values) {
            for (const double size : values) {
                expectPaintable({0, 0, size, 200}, {start, end, 0, 0, 1});
                expectPaintable({size, 0, 200, size}, {start, end, 0, 1, 1});
            }
        }
    }
}

SpectrumGrid gridOf(double viewWidth, const SpectrumDisplay& display) {
    return spectrumGrid(spectrumGeometry({0, 0, viewWidth, 300}, display, 64), display);
}

TEST(SpectrumGrid, FrequencyLinesStandAboutFiftyColumnsApart) {
    struct Row {
        double viewWidth;
        SpectrumDisplay display;
        const char* labels;
    };
    const Row rows[] = {
        {250, {0, 5000, 0, 0, 1}, "0 2500 5000 "},
        {630, {20, 20000, 0, 0, 1}, "20 2018 4016 6014 8012 10010 12008 14006 16004 18002 20000 "},
        // On the logarithmic axis a label names the next line's place less the left margin.
        {630, {20, 20000, 0, 1, 1}, "1 2 7 19 52 141 380 1023 2754 7413 19952 "},
        {180, {0, 1e300, 0, 0, 1}, "0 -2147483648 "},
        {179, {0, 5000, 0, 0, 1}, ""},
        {130, {0, 5000, 0, 0, 1}, ""},
        {250, {0, 5000, 0, 0, 0}, ""},
    };
    for (const Row& row : rows) {
        const SpectrumGrid grid = gridOf(row.viewWidth, row.display);
        const auto count = static_cast<double>(grid.frequencyLines.size());
        std::string labels;
        for (double offset = 0; const FrequencyLine& line : grid.frequencyLines) {
            EXPECT_EQ(std::tuple(line.x, line.label.x), std::tuple(52 + offset, 40 + offset));
            EXPECT_DOUBLE_EQ(line.label.y, 2.290499999999998);
            EXPECT_DOUBLE_EQ(line.top, 271.7955);
            EXPECT_DOUBLE_EQ(line.bottom, 20.2905);
            labels += std::string(line.label.text) + ' ';
            offset += (row.viewWidth - 130) / (count - 1);
        }
        EXPECT_EQ(labels, row.labels);
        EXPECT_EQ(grid.decibelLines.size(), row.display.gridMode != 0 ? 10U : 0U);
    }
}

TEST(SpectrumGrid, DecibelLinesRiseFromTheFloorToMinusTen) {
    const SpectrumGrid grid = gridOf(250, {0, 5000, 0, 0, 1});
    const std::tuple<std::size_t, double, const char*> expected[] = {
        {0, 20.2905, "-100 dB"}, {1, 48.2355, " -90 dB"}, {4, 132.0705, " -60 dB"}, {9, 271.7955, " -10 dB"}};
    for (const auto& [k, y, text] : expected) {
        const DecibelLine& line = grid.decibelLines[k];
        EXPECT_DOUBLE_EQ(line.y, y);
        EXPECT_DOUBLE_EQ(line.label.y, y - 4);
        EXPECT_EQ(line.label.text, text);
        EXPECT_EQ(std::tuple(line.left, line.right, line.label.x), std::tuple(51.0, 171.0, 5.0));
    }
}

} // namespace
} // namespace sonotrace
