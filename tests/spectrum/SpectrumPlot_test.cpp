// Trace and grids of the spectrum. The numbers were computed with 200 bits by a program of its own.

#include "spectrum/SpectrumGrid.h"
#include "spectrum/SpectrumTrace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace sonotrace {
namespace {

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
    const PlotRect small{0, 0, 250, 300};
    const PlotRect large{0, 0, 630, 400};
    expectPoints("a bin is many columns wide and the border bins count in both",
                 traceOf(large, {0, 5000}, 64),
                 {{50, 130.6795414699373},
                  {118, 130.6795414699373},
                  {119, 156.75243565136972},
                  {120, 153.13751012007953},
                  {188, 172.23172106081418},
                  {549, 198.053447420364}});
    expectPoints(
        "a column sums eight bins, in a view that starts between points",
        traceOf({10.5, 99, 630.25, 400}, {0, 5000}, 32768),
        {{60, 27.054}, {62, 42.00748405099794}, {310, 206.0668021841744}, {559, 228.48541864910663}});
    expectPoints("columns beyond the last bin hold power 1", traceOf(small, {40000, 48000}, 64),
                 {{50, 197.09381598936196},
                  {111, 199.070515028093},
                  {112, 20.290499999999998},
                  {169, 20.290499999999998}});
    expectPoints("and power 1 stands above the floor of a small transform", traceOf(small, {40000, 48000}, 2),
                 {{169, 98.29781190085336}});
    expectPoints(
        "a logarithmic axis runs over 4.3 decades whatever the frequencies",
        traceOf(large, {0, 5000, 0, 1}, 4096),
        {{50, 27.054}, {250, 48.07751793194879}, {400, 161.27605656506873}, {549, 296.83183397792214}});
    expectPoints("a reversed axis shows single bins and sinks to the floor at each border",
                 traceOf(small, {5000, 0}, 64),
                 {{50, 148.54008556527302},
                  {70, 145.2952727244971},
                  {71, 20.290499999999998},
                  {169, 98.00965610245298}});
    expectPoints("there is nothing below bin 0", traceOf(small, {-1000, 5000}, 64),
                 {{56, 20.290499999999998},
                  {57, 98.00965610245298},
                  {84, 117.5643267385273},
                  {169, 148.54008556527302}});
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
        std::vector<const char*> labels;
    };
    const Row rows[] = {
        {250, {0, 5000, 0, 0, 1}, {"0", "2500", "5000"}},
        {630,
         {20, 20000, 0, 0, 1},
         {"20", "2018", "4016", "6014", "8012", "10010", "12008", "14006", "16004", "18002", "20000"}},
        // On the logarithmic axis a label names the next line's place less the left margin.
        {630,
         {20, 20000, 0, 1, 1},
         {"1", "2", "7", "19", "52", "141", "380", "1023", "2754", "7413", "19952"}},
        {180, {0, 1e300, 0, 0, 1}, {"0", "-2147483648"}},
        {179, {0, 5000, 0, 0, 1}, {}},
        {130, {0, 5000, 0, 0, 1}, {}},
        {250, {0, 5000, 0, 0, 0}, {}},
    };
    for (const Row& row : rows) {
        const SpectrumGrid grid = gridOf(row.viewWidth, row.display);
        ASSERT_EQ(grid.frequencyLines.size(), row.labels.size()) << row.viewWidth;
        for (std::size_t i = 0; i < row.labels.size(); ++i) {
            const FrequencyLine& line = grid.frequencyLines[i];
            const double offset =
                (row.viewWidth - 130) / static_cast<double>(row.labels.size() - 1) * static_cast<double>(i);
            EXPECT_EQ(std::tuple(line.x, line.label.x), std::tuple(52 + offset, 40 + offset));
            EXPECT_DOUBLE_EQ(line.label.y, 2.290499999999998);
            EXPECT_DOUBLE_EQ(line.top, 271.7955);
            EXPECT_DOUBLE_EQ(line.bottom, 20.2905);
            EXPECT_EQ(line.label.text, row.labels[i]);
        }
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
