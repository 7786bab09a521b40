#include "measure/SpectrumReader.h"

#include "base/FftWindows.h"
#include "measure/AWeighting.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace sonotrace {
namespace {

struct Partial {
    double frequencyHz;
    double levelDbfs; ///< as a sine
    double phase;     ///< radians
};

/// Sixteen-bit samples of sines and white noise.
std::vector<double> signal(std::size_t size, const std::vector<Partial>& partials, double noiseDbfs = -300.0,
                           std::size_t from = 0) {
    std::mt19937 random(static_cast<unsigned>(size + from));
    std::normal_distribution<double> noise(0.0, 32768.0 / std::sqrt(2.0) * std::pow(10.0, noiseDbfs / 20.0));
    std::vector<double> samples(size);
    for (std::size_t i = 0; i < size; ++i) {
        double value = noise(random);
        for (const Partial& partial : partials)
            value += 32768.0 * std::pow(10.0, partial.levelDbfs / 20.0) *
                     std::cos(2.0 * std::numbers::pi * partial.frequencyHz / 44100.0 *
                                  static_cast<double>(from + i) +
                              partial.phase);
        samples[i] = std::round(value);
    }
    return samples;
}

SpectrumReader readerOf(const std::vector<double>& samples, FftWindowType window, std::int32_t blocks = 1) {
    std::vector<double> weights(samples.size());
    fillWindowCoeffs(window, static_cast<std::int64_t>(samples.size()), weights.data());
    SpectrumReader reader;
    reader.take({samples, weights, blocks});
    return reader;
}

double sumOfLevels(std::initializer_list<double> levels) {
    double sum = 0.0;
    for (const double level : levels)
        sum += std::pow(10.0, level / 10.0);
    return 10.0 * std::log10(sum);
}

// The limits are those that the manual publishes.
TEST(SpectrumReader, FindsALoneSineBetweenAnyTwoBinsWithEveryWindow) {
    for (FftWindowType window = 0; window < 10; ++window) {
        for (const std::size_t size : {16384U, 64U}) {
            for (const double bin : {10.0, 10.25, 15.5, 16.731, static_cast<double>(size) / 2.0 - 10.4}) {
                const double hz = bin * 44100.0 / static_cast<double>(size);
                SpectrumReader reader = readerOf(signal(size, {{hz, -6.0, bin}}), window);
                const auto peak = reader.read({}).peak;
                ASSERT_TRUE(peak && peak->levelDbfs);
                EXPECT_NEAR(peak->frequencyHz * static_cast<double>(size) / 44100.0, bin, 1e-4) << window;
                EXPECT_NEAR(*peak->levelDbfs, -6.0, 0.001) << window << " bin " << bin;
                const bool leaks = window == 0 || (window >= 2 && window <= 5);
                const auto pointed = reader.toneBetween(hz * 0.99, hz * 1.01, {});
                EXPECT_NEAR(*pointed->levelDbfs, -6.0, leaks || size == 64 ? 0.4 : 0.01)
                    << window << " bin " << bin;
            }
        }
    }
}

TEST(SpectrumReader, TellsDistortionFromNoise) {
    const struct {
        double second, third, tenth, noise; ///< dBFS; the fundamental has -3
    } cases[] = {{-43, -53, -60, -70}, {-73, -80, -90, -75}, {-95, -96, -101, -300}, {-43, -50, -60, -300}};
    constexpr std::size_t kSize = 65536;
    constexpr double kQuantisation = -98.1; // 1/12 of a step squared, beside a full-scale sine
    for (const auto& tried : cases) {
        for (const FftWindowType window : {1, 6, 7, 8, 9}) {
            constexpr double kHz = 1000.4;
            const auto samples = signal(kSize,
                                        {{kHz, -3.0, 0.3},
                                         {2 * kHz, tried.second, 1.0},
                                         {3 * kHz, tried.third, 2.0},
                                         {10 * kHz, tried.tenth, 3.0}},
                                        tried.noise);
            const SpectrumReadings readings = readerOf(samples, window).read({.fromHz = 0, .toHz = 11025});
            const double harmonics = sumOfLevels({tried.second, tried.third, tried.tenth});
            const double noise = sumOfLevels({tried.noise, kQuantisation});
            EXPECT_NEAR(*readings.thdDb, harmonics + 3.0, 0.1) << window;
            EXPECT_NEAR(*readings.thdPlusNoiseDb, sumOfLevels({harmonics, noise}) + 3.0, 0.2) << window;
            EXPECT_NEAR(*readings.snrDb, -3.0 - noise, 0.2) << window;
            EXPECT_NEAR(*readings.noiseDbfs, noise - 10.0 * std::log10(2.0), 0.3) << window; // half the band
            EXPECT_NEAR(*readings.noiseFloorDbfs, noise - 10.0 * std::log10(kSize / 2.0), 0.3) << window;
            EXPECT_NEAR(*readings.harmonics[0]->levelDbfs, tried.second, 0.1);
            EXPECT_LT(*readings.harmonics[2]->levelDbfs, sumOfLevels({noise - 30.0}));
            EXPECT_LT(*readings.thdNoiseDb, *readings.thdDb - 10.0);
        }
    }
}

TEST(SpectrumReader, ReadsATypedFundamentalAndTheMains) {
    const auto samples =
        signal(131072, {{3000, -6, 0}, {49.97, -60, 1}, {99.94, -70, 2}, {149.91, -80, 0}, {5000, -30, 0}});
    SpectrumQuestion question{.fundamentalHz = 4990, .mainsHz = 50};
    SpectrumReader reader = readerOf(samples, 8);
    SpectrumReadings readings = reader.read(question);
    EXPECT_NEAR(readings.peak->frequencyHz, 3000, 1e-4);
    EXPECT_LT(*readings.fundamental->levelDbfs, -100); // nothing as near as that to it
    question.fundamentalHz = 4999.5;
    readings = reader.read(question);
    EXPECT_NEAR(*readings.fundamental->levelDbfs, -30, 0.001);
    EXPECT_NEAR(readings.mains[0]->frequencyHz, 49.97, 0.001);
    EXPECT_NEAR(*readings.mains[0]->levelDbfs, -60, 0.02);
    EXPECT_NEAR(*readings.mains[2]->levelDbfs, -80, 0.05);
    EXPECT_NEAR(*readings.humDbfs, sumOfLevels({-60, -70, -80}), 0.02);
    // Hum may be the fundamental, with harmonics of its own.
    EXPECT_NEAR(*reader.read({.fundamentalHz = 50, .mainsHz = 50}).humDbfs, *readings.humDbfs, 0.02);
    EXPECT_FALSE(readerOf(signal(2048, {{50, -6, 0}}), 1).read(question).mains[0]); // the lines are one
}

TEST(SpectrumReader, AllowsForAveragedSamplesAndTheMicrophone) {
    // Four blocks of a sine that moves on by an eighth of a turn each, and noise.
    constexpr std::size_t kSize = 16384;
    const double hz = 372.125 * 44100.0 / kSize;
    std::vector<double> sum(kSize);
    for (std::size_t block = 0; block < 4; ++block) {
        const auto samples = signal(kSize, {{hz, -20, 0}}, -60, block * kSize);
        for (std::size_t i = 0; i < kSize; ++i)
            sum[i] += samples[i];
    }
    const SpectrumReadings averaged = readerOf(sum, 7, 4).read({.responseDb = [](double) { return 2.0; }});
    EXPECT_NEAR(*averaged.peak->levelDbfs, -22.0, 0.01);
    EXPECT_NEAR(*averaged.snrDb, 40.0, 0.3);
    // A quarter of a turn a block: four of them cancel.
    const double lost = 372.25 * 44100.0 / kSize;
    std::ranges::fill(sum, 0.0);
    for (std::size_t block = 0; block < 4; ++block) {
        const auto samples = signal(kSize, {{lost, -20, 0}}, -60, block * kSize);
        for (std::size_t i = 0; i < kSize; ++i)
            sum[i] += samples[i];
    }
    EXPECT_FALSE(readerOf(sum, 7, 4).toneBetween(lost - 0.1, lost + 0.1, {})->levelDbfs);
}

TEST(SpectrumReader, SaysNothingAboutNothing) {
    const SpectrumReadings noise = readerOf(signal(4096, {}, -20), 1).read({});
    EXPECT_TRUE(noise.snrDb && !noise.thdDb && !noise.thdPlusNoiseDb && !noise.sinadDb);
    SpectrumReader reader;
    EXPECT_FALSE(reader.read({}).peak);
    EXPECT_FALSE(reader.toneBetween(0, 100, {}));
    reader = readerOf(std::vector<double>(64), 9);
    const SpectrumReadings silent = reader.read({.fundamentalHz = -5, .mainsHz = 50});
    EXPECT_FALSE(silent.peak || silent.thdDb || silent.noiseDbfs || silent.snrDb || silent.humDbfs);
    for (const double hz : {-1.0, 1e300, std::nan("")})
        EXPECT_FALSE(reader.toneBetween(hz, hz, {})) << hz;
    EXPECT_LT(*readerOf(signal(64, {{22000, -6, 1}}), 1).read({}).peak->levelDbfs, 0); // next to the end
    EXPECT_NEAR(aWeighting(100.0), std::pow(10.0, -1.91), 0.0005); // the standard's table, in tenths of a dB
    EXPECT_NEAR(10.0 * std::log10(aWeighting(10000.0)), -2.5, 0.05);
}

} // namespace
} // namespace sonotrace
