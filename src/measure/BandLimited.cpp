#include "measure/BandLimited.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <numeric>

namespace sonotrace {

namespace {

constexpr int kReach = 32; ///< samples to each side

constexpr std::size_t kTaps = std::size_t{2} * kReach;
constexpr std::size_t kLanes = 4; ///< sums beside each other, which the compiler makes vectors of

using Taps = std::array<double, kTaps>;

/// Of each sample that has a weight: how far it is behind the sample before the place, and the window there
/// with the sign of the sinc.
struct Kernel {
    Taps offset;
    Taps sign;
    Taps cosine;
    Taps sine;
};

const Kernel kKernel = [] {
    Kernel kernel{};
    for (std::size_t i = 0; i < kTaps; ++i) {
        kernel.offset[i] = static_cast<double>(i) - (kReach - 1);
        kernel.sign[i] = i % 2 == 0 ? 1.0 : -1.0;
        kernel.cosine[i] = kernel.sign[i] * std::cos(std::numbers::pi / kReach * kernel.offset[i]);
        kernel.sine[i] = kernel.sign[i] * std::sin(std::numbers::pi / kReach * kernel.offset[i]);
    }
    return kernel;
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
    Taps weights;
    for (std::size_t i = 0; i < kTaps; ++i)
        weights[i] = (kKernel.sign[i] + kKernel.cosine[i] * cosine + kKernel.sine[i] * sine) /
                     (part - kKernel.offset[i]);
    const std::ptrdiff_t start = base - (kReach - 1);
    const auto first = static_cast<std::size_t>(std::max<std::ptrdiff_t>(-start, 0));
    const auto end = static_cast<std::size_t>(std::min<std::ptrdiff_t>(last + 1 - start, kTaps));
    std::fill(weights.begin(), weights.begin() + static_cast<std::ptrdiff_t>(first), 0.0);
    std::fill(weights.begin() + static_cast<std::ptrdiff_t>(end), weights.end(), 0.0);
    Taps values{};
    for (std::size_t i = first; i < end; ++i)
        values[i] = samples[static_cast<std::size_t>(start + static_cast<std::ptrdiff_t>(i))];
    std::array<double, kLanes> sums{};
    std::array<double, kLanes> totals{};
    for (std::size_t i = 0; i < kTaps; i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            sums[lane] += weights[i + lane] * values[i + lane];
            totals[lane] += weights[i + lane];
        }
    }
    return std::accumulate(sums.begin(), sums.end(), 0.0) /
           std::accumulate(totals.begin(), totals.end(), 0.0);
}

} // namespace

double bandLimited(std::span<const std::int16_t> samples, double at) {
    return interpolated(samples, at);
}

double bandLimited(std::span<const double> samples, double at) {
    return interpolated(samples, at);
}

} // namespace sonotrace
