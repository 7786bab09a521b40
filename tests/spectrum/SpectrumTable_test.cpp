#include "spectrum/SpectrumTable.h"

#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumOverlays.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <sstream>

namespace sonotrace {
namespace {

/// The rows of a table, cell by cell, with the names of the columns in front.
std::vector<std::vector<std::string>> rowsOf(const std::string& table) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('#'))
            continue;
        rows.emplace_back();
        std::istringstream cells(line + ",");
        for (std::string cell; std::getline(cells, cell, ',');)
            rows.back().push_back(cell);
    }
    return rows;
}

/// A sine of full scale in the middle of bin 16 of 64, to the left.
std::vector<std::int16_t> fullScaleSine(std::size_t frames) {
    std::vector<std::int16_t> samples(2 * frames);
    for (std::size_t i = 0; i < frames; ++i)
        samples[2 * i] = static_cast<std::int16_t>(
            std::lrint(32767.0 * std::sin(0.5 * std::numbers::pi * (0.5 + static_cast<double>(i)))));
    return samples;
}

TEST(SpectrumTable, ASineOfFullScaleIsZeroDecibelsInItsBinWithEveryWindow) {
    // Its samples are 0.7071 of full scale: rounding them is what is left.
    for (FftWindowType window = 0; window < static_cast<FftWindowType>(kFftWindowTitles.size()); ++window) {
        SpectrumAnalysis analysis([] {});
        analysis.setFftSize(64);
        analysis.setWindowType(window);
        analysis.capture(fullScaleSine(65));
        SpectrumOverlays overlays;
        // The windows for the next spectrum are no matter.
        analysis.setWindowType(window + 1);
        analysis.setFftSize(128);
        const auto rows = rowsOf(spectrumTable({}, {}, shownTraces(analysis, overlays), 11000.0, 12000.0));
        ASSERT_EQ(rows.size(), 3U) << "names, and the bins from 11025 to 11714 Hz";
        EXPECT_EQ(rows[0], (std::vector<std::string>{"frequency_hz", "level_dbfs"}));
        EXPECT_EQ(rows[1][0], "11025.000000");
        EXPECT_NEAR(std::stod(rows[1][1]), 0.0, 0.002) << "window " << window;
    }
}

TEST(SpectrumTable, ConstantsAndSilenceAreWhatTheirPowerIs) {
    SpectrumAnalysis analysis([] {});
    analysis.setFftSize(64);
    SpectrumOverlays overlays;
    EXPECT_EQ(rowsOf(spectrumTable({}, {}, shownTraces(analysis, overlays), 0.0, 22050.0)).size(), 1U)
        << "no spectrum yet";
    std::vector<std::int16_t> samples(130);
    for (std::size_t i = 0; i < samples.size(); i += 2)
        samples[i] = 16384;
    analysis.capture(samples);
    const auto rows = rowsOf(spectrumTable({}, {}, shownTraces(analysis, overlays), 0.0, 22050.0));
    ASSERT_EQ(rows.size(), 34U);
    EXPECT_EQ(rows[1][1], "-3.0103") << "half of full scale, 3 dB above a sine with that peak";
    EXPECT_EQ(rows[2][1], "") << "no power";
    EXPECT_EQ(rows[33][0], "22050.000000");
}

TEST(SpectrumTable, EveryTraceThatIsShownHasItsColumnInItsOwnDecibels) {
    SpectrumOverlays overlays;
    const SpectrumAnalysis none([] {});
    const auto add = [&](double size, double power) {
        const std::vector<double> bins(static_cast<std::size_t>(size / 2.0) + 1, power);
        const SpectrumBins spectrum{bins, size, size / 2.0};
        overlays.add(spectrum);
        SpectrumTraces traces = shownTraces(none, overlays);
        traces.spectrum = spectrum;
        return rowsOf(spectrumTable({}, {}, traces, 0.0, 22050.0));
    };
    using enum SpectrumOverlay;
    add(64, 32768.0 * 32768.0 * 16.0 * 16.0); // 0 dBFS: the square of half the sum of the window's weights
    ASSERT_TRUE(overlays.storeReference());
    overlays.clear();
    overlays.setAverage(AverageKind::LastSpectra, 2);
    overlays.ask(PeakHold, true);
    overlays.ask(Difference, true);
    overlays.ask(Corrected, true);
    overlays.setResponse([](double frequencyHz) { return frequencyHz / 1000.0; });
    add(128, 32768.0 * 32768.0 * 32.0 * 32.0 * 0.1);
    const auto hidden = add(128, 32768.0 * 32768.0 * 32.0 * 32.0 * 0.01);
    const std::vector<std::string> names = {"frequency_hz",   "level_dbfs",    "power_average_dbfs",
                                            "peak_hold_dbfs", "difference_db", "corrected_dbfs"};
    EXPECT_EQ(hidden[0], names) << "a reference that is not shown is compared with all the same";
    const std::vector<std::string> second = {"344.531250", "-20.0000", "-12.5964",
                                             "-10.0000",   "",         "-12.9409"};
    EXPECT_EQ(hidden[2], second) << "a bin that the smaller reference does not have";
    EXPECT_EQ(hidden[3][4], "-12.5964") << "one that it has";
}

} // namespace
} // namespace sonotrace
