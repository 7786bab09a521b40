#include "spectrum/SpectrumFft.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

namespace sonotrace {
namespace {

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

/// The textbook routine, operation by operation: one pass over the array a stage, the factor turned on the
/// way. `data` points before the first element.
void textbookTransform(double* data, std::size_t points) {
    const std::size_t n = 2 * points;
    for (std::size_t i = 1, j = 1; i < n; i += 2) {
        if (j > i) {
            std::swap(data[j], data[i]);
            std::swap(data[j + 1], data[i + 1]);
        }
        std::size_t m = n / 2;
        for (; m >= 2 && j > m; m /= 2)
            j -= m;
        j += m;
    }
    for (std::size_t mmax = 2; mmax < n; mmax *= 2) {
        const double theta = 6.28318530717959 / static_cast<double>(mmax);
        long double wtemp = std::sin(0.5 * theta);
        const long double wpr = -2.0L * wtemp * wtemp;
        const long double wpi = std::sin(theta);
        long double wr = 1.0L;
        long double wi = 0.0L;
        for (std::size_t m = 1; m < mmax; m += 2) {
            for (std::size_t i = m; i <= n; i += 2 * mmax) {
                const std::size_t j = i + mmax;
                const long double tempr = wr * data[j] - wi * data[j + 1];
                const long double tempi = wr * data[j + 1] + wi * data[j];
                data[j] = static_cast<double>(data[i] - tempr);
                data[j + 1] = static_cast<double>(data[i + 1] - tempi);
                data[i] = static_cast<double>(data[i] + tempr);
                data[i + 1] = static_cast<double>(data[i + 1] + tempi);
            }
            wtemp = wr;
            wr = wr + (wr * wpr - wi * wpi);
            wi = wi + (wi * wpr + wtemp * wpi);
        }
    }
}

TEST(SpectrumFft, EverySizeHasTheBitsOfTheTextbookRoutine) {
    SpectrumFft fft; // one for all: a size must not depend on those before it
    for (const std::size_t points : {1, 64, 2, 4, 1024, 512, 131072, 32768}) {
        std::vector<double> expected = noise(points);
        std::vector<double> data = expected;
        textbookTransform(expected.data() - 1, points);
        fft.transform(data);
        EXPECT_EQ(std::memcmp(data.data(), expected.data(), data.size() * sizeof(double)), 0) << points;
    }
    std::vector<double> data = noise(2048);
    fft.transform(data);
    if (std::numeric_limits<long double>::digits == 64) { // from an emulation of 64-bit mantissas
        EXPECT_EQ(data[4094], 0x1.d13cf4fe7be19p+18);
        EXPECT_EQ(data[4095], -0x1.8d9b7bdd531dfp+17);
    }
    data = noise(48); // not a power of two: left as it is
    fft.transform(data);
    EXPECT_EQ(data, noise(48));
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
}

} // namespace
} // namespace sonotrace
