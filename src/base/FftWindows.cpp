#include "base/FftWindows.h"

#include "base/SystemLog.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

namespace sonotrace {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double k2Pi = 6.283185307179586;
constexpr double k4Pi = 12.566370614359172;
constexpr double k6Pi = 18.84955592153876;
constexpr double k8Pi = 25.132741228718345;

/// Position in a window, both in single precision: exact up to 16777216 points.
struct Position {
    float i;
    float n;

    /// i * constant / n, multiplied before it is divided: the other order rounds differently.
    double angle(double constant) const { return static_cast<double>(i) * constant / static_cast<double>(n); }
    double cosine(double constant) const { return std::cos(angle(constant)); }
};

double rectangular(Position) {
    return 1.0;
}

double hann(Position p) {
    return (1.0 - p.cosine(k2Pi)) * 0.5;
}

double hamming(Position p) {
    return 0.54 + -0.46 * p.cosine(k2Pi);
}

/// The first radian of a cosine, 1.0 down to cos(1). The quotient is rounded to single precision.
double tukey(Position p) {
    return std::cos(static_cast<double>(p.i / p.n));
}

double halfSine(Position p) {
    return std::sin(p.angle(kPi));
}

double blackman(Position p) {
    return 0.42 + -0.5 * p.cosine(k2Pi) + 0.08 * p.cosine(k4Pi);
}

double nuttall(Position p) {
    return 0.355768 + -0.487396 * p.cosine(k2Pi) + 0.144232 * p.cosine(k4Pi) + -0.012604 * p.cosine(k6Pi);
}

double blackmanNuttall(Position p) {
    return 0.3635819 + -0.4891775 * p.cosine(k2Pi) + 0.1365995 * p.cosine(k4Pi) + -0.0106411 * p.cosine(k6Pi);
}

double flatTop(Position p) {
    return 1.0 + -1.933 * p.cosine(k2Pi) + 1.286 * p.cosine(k4Pi) + -0.388 * p.cosine(k6Pi) +
           0.0322 * p.cosine(k8Pi);
}

/// In the order of kFftWindowTitles.
constexpr std::array<double (*)(Position), kFftWindowTitles.size()> kWeights = {
    rectangular, hann, hamming, tukey, halfSine, halfSine, blackman, nuttall, blackmanNuttall, flatTop};

} // namespace

void fillWindowCoeffs(FftWindowType windowType, std::int64_t n, double* coeffs) {
    if (n <= 0)
        return;
    const std::span<double> weights(coeffs, static_cast<std::size_t>(n));
    if (windowType <= 0 || windowType >= static_cast<FftWindowType>(kWeights.size())) {
        std::ranges::fill(weights, 1.0);
        return;
    }
    const auto weight = kWeights[static_cast<std::size_t>(windowType)];
    for (std::int64_t i = 0; i < n; ++i)
        weights[static_cast<std::size_t>(i)] = weight({static_cast<float>(i), static_cast<float>(n)});
}

void logWindowCoeffs(FftWindowType windowType, std::int64_t n) {
    systemLog("BuildNewWindowCoeffs %d N=%d", windowType, static_cast<std::int32_t>(n));
}

void BuildNewWindowCoeffs(FftWindowType windowType, std::int64_t n, double* coeffs) {
    logWindowCoeffs(windowType, n);
    fillWindowCoeffs(windowType, n, coeffs);
}

} // namespace sonotrace
