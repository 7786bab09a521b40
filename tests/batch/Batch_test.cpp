#include "batch/FileSpectra.h"
#include "spectrum/SpectrumAnalysis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace sonotrace {
namespace {

/// Noise of full scale, different on both channels.
std::vector<std::int16_t> noise(std::size_t samples) {
    std::mt19937 random;
    std::vector<std::int16_t> signal(samples);
    for (std::int16_t& sample : signal)
        sample = static_cast<std::int16_t>(random());
    return signal;
}

TEST(FileSpectra, AreToTheBitWhatTheAnalyzerMakesOfTheSameSamples) {
    const std::vector<std::int16_t> signal = noise(2 * 100000);
    const FileSpectraSettings cases[] = {{256, 7, 3, ChannelFold::Sum, true},
                                         {64, 7, 1, ChannelFold::Left, true},
                                         {1024, 7, 1, ChannelFold::Right, true},
                                         {4096, 7, 5, ChannelFold::Difference, true}};
    for (const FileSpectraSettings& settings : cases) {
        std::vector<double> mean;
        std::vector<double> highest;
        double count = 0;
        SpectrumAnalysis analysis([&] {
            const auto power =
                analysis.powerSpectrum().first(static_cast<std::size_t>(settings.fftSize) / 2 + 1);
            mean.resize(power.size());
            highest.resize(power.size());
            for (std::size_t k = 0; k < power.size(); ++k) {
                mean[k] += power[k];
                highest[k] = std::max(highest[k], power[k]);
            }
            ++count;
        });
        analysis.setFold(settings.fold);
        analysis.setFftSize(settings.fftSize);
        analysis.setWindowType(settings.windowType);
        analysis.setNumAvg(settings.blocks);
        analysis.capture(signal);
        FileSpectra spectra(settings);
        std::span<const std::int16_t> rest(signal);
        for (std::size_t part = 2; !rest.empty(); part = part * 3 % 50022) { // no two pieces are alike
            const std::size_t samples = std::min(part, rest.size());
            spectra.take(rest.first(samples));
            rest = rest.subspan(samples);
        }
        spectra.finish();
        EXPECT_EQ(spectra.spectra(), static_cast<std::uint64_t>(count));
        EXPECT_TRUE(std::ranges::equal(spectra.blockSum(), analysis.blockSum()));
        EXPECT_TRUE(std::ranges::equal(spectra.windowCoeffs(), analysis.windowCoeffs()));
        EXPECT_EQ(spectra.wrapped() > 0, settings.blocks > 1); // those are the sum and the difference
        ASSERT_EQ(spectra.meanPower().size(), mean.size());
        for (std::size_t k = 0; k < mean.size(); ++k) {
            ASSERT_NEAR(spectra.meanPower()[k] / (mean[k] / count), 1.0, 1e-9)
                << settings.fftSize << ' ' << k;
            ASSERT_NEAR(spectra.peakHold()[k] / highest[k], 1.0, 1e-9) << settings.fftSize << ' ' << k;
        }
    }
}

TEST(FileSpectra, TheMeanOfManyDoesNotDependOnWhichThreadIsFirst) {
    const std::vector<std::int16_t> signal = noise(2 * 2000000);
    std::vector<double> first;
    for (int run = 0; run < 4; ++run) {
        FileSpectra spectra({.fftSize = 1024, .collectsPowers = true});
        spectra.take(signal);
        spectra.finish();
        const std::vector<double> mean(spectra.meanPower().begin(), spectra.meanPower().end());
        if (run == 0)
            first = mean;
        EXPECT_EQ(mean, first);
    }
}

} // namespace
} // namespace sonotrace
