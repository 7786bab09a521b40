#include "spectrum/SpectrumOverlays.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace sonotrace {
namespace {

constexpr PlotRect kBounds{0, 0, 630, 1000}; // a plot of 500 columns; 40.5 points a unit
const SpectrumDisplay kDisplay{.spectrumStartFreq = 0, .spectrumEndFreq = 5000};

struct Bench {
    SpectrumOverlays overlays;

    void add(std::size_t size, double power) {
        const std::vector<double> bins(size / 2 + 1, power);
        overlays.add({bins, static_cast<double>(size), static_cast<double>(size)});
    }

    /// Height of a trace in its middle; -1 where there is none.
    double height(SpectrumOverlay overlay) {
        std::vector<PlotPoint> line;
        overlays.build(overlay, kBounds, kDisplay, line);
        return line.empty() ? -1.0 : line[line.size() / 2].y;
    }
};

/// Height of a power in a column of two bins of a spectrum of 1024 points.
double heightOf(double power) {
    return (std::log(2.0 * power / 4.0) - 3.0) * 40.5;
}

TEST(SpectrumOverlays, AverageHoldReferenceAndDifferenceAreOfPower) {
    Bench bench;
    using enum SpectrumOverlay;
    bench.overlays.setAverage(AverageKind::LastSpectra, 3);
    bench.overlays.ask(PeakHold, true);
    bench.overlays.ask(Reference, true);
    bench.overlays.ask(Difference, true);
    EXPECT_FALSE(bench.overlays.storeReference());
    for (const double power : {9e6, 1e6, 2e6, 6e6})
        bench.add(1024, power);
    // The column that reaches 2500 Hz holds bins 57 and 58, of 43.066 Hz each.
    EXPECT_NEAR(bench.height(PeakHold), heightOf(9e6), 1e-6);
    EXPECT_NEAR(bench.height(Average), heightOf(3e6), 1e-4) << "of the last three";
    EXPECT_TRUE(bench.overlays.storeReference());
    EXPECT_NEAR(bench.height(Difference), (1.67 + 5 * 2.3) * 40.5, 1e-9) << "0 dB at the line of -50";
    bench.overlays.setAverage(AverageKind::Exponential, 2);
    bench.add(1024, 3e6);
    bench.add(1024, 3e8);
    bench.add(1024, 3e6);
    EXPECT_NEAR(bench.height(Average), heightOf(0.5 * (0.5 * 303e6 + 3e6)), 1e-6);
    bench.overlays.setAverage(AverageKind::Off, 2);
    bench.add(1024, 3e7);
    EXPECT_EQ(bench.height(Average), -1);
    EXPECT_NEAR(bench.height(Difference), (1.67 + 5 * 2.3 + std::log(10.0)) * 40.5, 1e-4);
    // A noise's power in a bin grows with the size, and its column is drawn as high with either.
    bench.add(4096, 4.0 * 3e6);
    EXPECT_NEAR(bench.height(PeakHold), heightOf(3e6) - std::log(4.0) * 40.5, 1e-6) << "began anew";
    EXPECT_NEAR(bench.height(Reference), heightOf(3e6), 1e-4) << "stays";
    EXPECT_TRUE(bench.overlays.clear());
    EXPECT_FALSE(bench.overlays.clear());
    EXPECT_EQ(bench.height(PeakHold), -1);
}

TEST(SpectrumOverlays, TheMicrophoneIsTakenOffTheTraceUpToHalfTheSampleRate) {
    Bench bench;
    bench.overlays.ask(SpectrumOverlay::Corrected, true);
    bench.add(1024, 1e6);
    EXPECT_EQ(bench.height(SpectrumOverlay::Corrected), -1);
    bench.overlays.setResponse([](double frequency) { return frequency > 1000 ? -10.0 : 100.0; });
    EXPECT_NEAR(bench.height(SpectrumOverlay::Corrected), heightOf(1e6) + 2.3 * 40.5, 1e-6);
    std::vector<PlotPoint> line;
    for (const double end : {44100.0, 1e300, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        bench.overlays.build(SpectrumOverlay::Corrected, kBounds, {.spectrumEndFreq = end}, line);
        for (const PlotPoint& point : line)
            ASSERT_TRUE(point.x <= (end == 44100.0 ? 300 : 550) && point.y >= 0 && point.y <= 1000) << end;
    }
}

TEST(PowerAverage, KeepsNoMoreSpectraThanThereIsRoomFor) {
    PowerAverage average;
    average.set(AverageKind::LastSpectra, 1000);
    for (int i = 0; i < 70; ++i)
        average.add(std::vector<double>(65537, i));
    EXPECT_EQ(average.count(), 63U); // of four million values
    EXPECT_EQ(average.mean()[65536], (7 + 69) / 2.0);
    average.add(std::vector<double>(33, 5));
    EXPECT_EQ(average.count(), 1U);
}

} // namespace
} // namespace sonotrace
