#include "measure/ChannelDelay.h"
#include "measure/SignalReadings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <vector>

namespace sonotrace {
namespace {

constexpr double kRate = 44100.0;

using Signal = std::function<double(double)>;

std::vector<std::int16_t> block(const Signal& signal) {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < 11025; ++i)
        samples.push_back(static_cast<std::int16_t>(std::lround(signal(i))));
    return samples;
}

Signal sine(double frequency, double delay, double peak = 30000.0) {
    return [=](double i) {
        return peak * std::sin(2.0 * std::numbers::pi * frequency / kRate * (i - delay) + 0.3);
    };
}

/// White noise, as far above and below 0 as 6 times its root mean square, 4000.
std::vector<double> noise(unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> even(-2000, 2000);
    std::vector<double> samples(40000);
    for (double& sample : samples)
        for (int i = 0; i < 12; ++i)
            sample += even(random);
    return samples;
}

Signal from(std::vector<double> samples, double gain = 1.0) {
    return [=](double i) { return gain * samples[static_cast<std::size_t>(i + 20000)]; };
}

/// The response of a low-pass of first order to what is constant between samples.
std::vector<double> lowPass(const std::vector<double>& input, double corner) {
    std::vector<double> output;
    double state = 0.0;
    for (const double sample : input)
        output.push_back(state +=
                         (1.0 - std::exp(-2.0 * std::numbers::pi * corner / kRate)) * (sample - state));
    return output;
}

TEST(SignalReadings, AreWhatTheSignalWasMadeOf) {
    const struct {
        Signal signal;
        double maximum, minimum, mean, rms, frequency, error, duty;
        int periods;
    } rows[] = {
        // Means and root mean squares by arithmetic over 441 samples, which repeat; 0: no period.
        {sine(1000, 0), 30000, -30000, 0, 30000 * std::numbers::sqrt2 / 2, 1000, 0.001, 50, 249},
        {sine(12.3, 5000), 30000, -30000, -674.963, 21395.275, 12.3, 0.0002, 50, 2},
        {sine(17999, 0), 30000, -30000, 0, 21213.2, 17999, 0.7, 50, 4498},
        {[](double i) { return std::fmod(i, 100) < 25 ? 9000 : 1000; }, 9000, 1000, 3013.605, 4597.396, 441,
         1e-9, 25, 109},
        {[](double) { return -7; }, -7, -7, -7, 7, 0, 0, 0, 0},
        {from(noise(1)), 15000, -15000, 0, 4000, 0, 0, 0, 0},
        {from(lowPass(noise(1), 50), 20), 12000, -12000, 0, 6700, 0, 0, 0, 0},
        {sine(7, 0), 30000, -30000, 0, 21213, 0, 0, 0, 0}, // less than two periods
        {sine(21000, 0), 30000, -30000, 0, 21213, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        const SignalReadings read = readSignal(block(row.signal), kRate);
        const double wide = &row - rows > 3 ? 4000 : 2; // of what is random or incomplete
        EXPECT_NEAR(read.maximum, row.maximum, wide) << "row " << &row - rows;
        EXPECT_NEAR(read.minimum, row.minimum, wide);
        EXPECT_NEAR(read.mean, row.mean, wide);
        EXPECT_NEAR(read.rms, row.rms, wide);
        const PeriodReading period = read.period.value_or(PeriodReading());
        EXPECT_NEAR(period.frequencyHz, row.frequency, row.error) << "row " << &row - rows;
        EXPECT_NEAR(period.dutyPerCent, row.duty, 0.1);
        EXPECT_NEAR(period.periods, row.periods, row.periods > 3 ? 1 : 0);
    }
}

TEST(ChannelDelay, IsWhereTheChannelsAreMostAlike) {
    // Noise that is delayed by less than a sample: what the sinc makes of it, summed up far to both sides.
    const auto delayed = [](double delay) {
        return [=, white = noise(1)](double i) {
            double sum = 0.0;
            for (int k = -600; k <= 600; ++k) {
                const double x = std::numbers::pi * (k - delay);
                sum += white[static_cast<std::size_t>(i + 20000 - k)] * (x == 0.0 ? 1.0 : std::sin(x) / x);
            }
            return sum;
        };
    };
    const std::vector<double> white = noise(1);
    const std::vector<double> grey = lowPass(white, 500);
    std::vector<double> square;
    for (int i = 0; i < 40000; ++i)
        square.push_back(i / 5512 % 2 == 0 ? 20000 : -20000); // 4 Hz
    const struct {
        Signal first, second;
        double delay, error, period, correlation; // in samples
    } rows[] = {
        {from(white), delayed(0.37), 0.37, 0.01, 0, 1},
        {from(white, -1), [&](double i) { return from(white)(i - 300); }, 300, 0.001, 0, -1},
        {sine(1000, 0), sine(1000, 0.37, 300), 0.37, 0.007, 44.1, 1},
        {sine(1000, 0), sine(1000, 300), -8.7, 0.007, 44.1, 1},
        {sine(7000, 0), sine(7000, 300), -2.4, 0.003, 6.3, 1},
        {sine(18340, 0), sine(18340, 0.37), 0.37, 0.002, 44100 / 18340.0, 1},
        {sine(20, 0), sine(20, 300), 300, 0.3, 2205, 1},
        // ln(2 a / (a + b)) / (a - b) of the corners, and ln 2 / b of the slow square
        {from(white, 1), from(lowPass(white, 50)), 0, 1, 0, 0.12},
        {from(grey, 2), from(lowPass(grey, 50), 8), 26.6, 3, 0, 0.5},
        {from(square), from(lowPass(square, 50)), 97.3, 1, 0, 0.98},
    };
    ChannelDelay delay(11025, kRate);
    for (const auto& row : rows) {
        const auto read = delay.read(block(row.first), block(row.second));
        ASSERT_TRUE(read) << "row " << &row - rows;
        EXPECT_NEAR(read->delaySeconds * kRate, row.delay, row.error) << "row " << &row - rows;
        EXPECT_NEAR(read->correlation, row.correlation, 0.03) << "row " << &row - rows;
        EXPECT_EQ(read->ambiguous, row.period > 0) << "row " << &row - rows;
        EXPECT_NEAR(read->periodSeconds.value_or(0) * kRate, row.period, 1e-3 * row.period);
        EXPECT_NEAR(read->phaseDegrees.value_or(0), row.period > 0 ? -360 * row.delay / row.period : 0, 0.2);
    }
    EXPECT_FALSE(delay.read(block(from(white)), block(from(noise(2)))));
    EXPECT_FALSE(delay.read(block(sine(1000, 0)), block(sine(1010, 0))));
    EXPECT_FALSE(delay.read(block(sine(1000, 0)), block([](double) { return 5; })));
}

} // namespace
} // namespace sonotrace
