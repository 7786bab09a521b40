#include "measure/BandLimited.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace sonotrace {

namespace {

constexpr int kReach = 32; ///< samples to each side

using Taps = std::array<double, std::size_t{2} * kReach>;

/// Of each sample that has a weight: the window's angle, and the sign of the sinc.
struct Turns {
    Taps cosine;
    Taps sine;
    Taps sign;
};

const Turns kTurns = [] {
    Turns turns{};
    for (std::size_t i = 0; i < turns.cosine.size(); ++i) {
        const double angle = std::numbers::pi / kReach * (static_cast<double>(i) - (kReach - 1));
        turns.cosine[i] = std::cos(angle);
        turns.sine[i] = std::sin(angle);
        turns.sign[i] = i % 2 == 0 ? 1.0 : -1.0;
    }
    return turns;
}();

/// Divided by the sum of the weights, so that a constant stays one; that cancels the sine of the sinc, which
/// has the same size at all samples.
template <typename Sample>
double interpolated(std::span<const Sample> samples, double at) {
    const auto last = static_cast<std::ptrdiff_t>(samples.size()) - 1;
    const double inside = std::clamp(at, 0.0, static_cast<double>(last));
    const auto base = static_cast<std::ptrdiff_t>(inside);
    const double part = inside - static_cast<double>(base);
    if (part == 0.0)
        return samples[static_cast<std::size_t>(base)];
    const double cosine = std::cos(std::numbers::pi / kReach * part);
    const double sine = std::sin(std::numbers::pi / kReach * part);
    const std::ptrdiff_t first = std::max<std::ptrdiff_t>(base - (kReach - 1), 0);
    const std::ptrdiff_t end = std::min<std::ptrdiff_t>(base + kReach, last);
    double sum = 0.0;
    double weights = 0.0;
    for (std::ptrdiff_t i = first; i <= end; ++i) {
        const auto tap = static_cast<std::size_t>(i - base + kReach - 1);
        const double window = 1.0 + kTurns.cosine[tap] * cosine + kTurns.sine[tap] * sine;
        const double sinc = kTurns.sign[tap] / (part - static_cast<double>(i - base));
        sum += window * sinc * samples[static_cast<std::size_t>(i)];
        weights += window * sinc;
    }
    return sum / weights;
}

} // namespace

double bandLimited(std::span<const std::int16_t> samples, double at) {
    return interpolated(samples, at);
}

double bandLimited(std::span<const double> samples, double at) {
    return interpolated(samples, at);
}

} // namespace sonotrace
