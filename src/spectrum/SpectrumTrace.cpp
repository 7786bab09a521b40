#include "spectrum/SpectrumTrace.h"

#include "base/Numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace sonotrace {

namespace {

/// Power from bin `first` to bin `last`, both included. Bins below the first one, which negative frequencies
/// ask for, hold no power; nor do those behind the array.
double sumOfBins(std::span<const double> power, std::int32_t first, std::int32_t last) {
    const std::int64_t begin = std::max(first, 0);
    const std::int64_t end = std::min(last + std::int64_t{1}, static_cast<std::int64_t>(power.size()));
    double sum = 0.0;
    for (std::int64_t bin = begin; bin < end; ++bin)
        sum += power[static_cast<std::size_t>(bin)];
    return sum;
}

/// Power of a column that reaches from `previousBin` to `bin`: neighbours share the bin on their border, so
/// that no line of the spectrum falls between two columns.
double columnPower(std::span<const double> power, double fftSize, std::int32_t previousBin,
                   std::int32_t bin) {
    if (!(fftSize > bin))
        return 1.0;
    return sumOfBins(power, previousBin, bin);
}

} // namespace

void columnPowers(const SpectrumGeometry& geometry, const SpectrumDisplay& display,
                  std::span<const double> power, double fftSize, std::vector<double>& powers) {
    powers.clear();
    double frequency = display.spectrumStartFreq;
    std::int32_t previousBin = truncateToInt32(frequency / geometry.binHz);
    for (std::int32_t x = geometry.left; x < geometry.right; ++x) {
        if (display.logMode != 0)
            frequency = std::pow(10.0, (x - geometry.left) * geometry.logStep);
        const std::int32_t bin = truncateToInt32(frequency / geometry.binHz);
        powers.push_back(columnPower(power, fftSize, previousBin, bin));
        frequency += geometry.hzPerPixel;
        previousBin = bin;
    }
}

void SpectrumTrace::build(const SpectrumGeometry& geometry, const SpectrumDisplay& display,
                          std::span<const double> powerSpectrum, double fftSize) {
    line_.clear();
    bars_.clear();
    if (powerSpectrum.empty())
        return;
    columnPowers(geometry, display, powerSpectrum, fftSize, powers_);
    std::int32_t x = geometry.left;
    for (const double power : powers_) {
        const double height = (std::log(power * geometry.powerScale) - 3.0) * geometry.yScale;
        // No power gives minus infinity, and in a view without height no number: both end on the floor.
        const double y = height > geometry.yFloor ? height : geometry.yFloor;
        if (display.fillMode != 0) {
            bars_.push_back({static_cast<double>(x), geometry.yFloor, 1.0, y - geometry.yFloor});
        } else {
            if (line_.empty())
                line_.push_back({static_cast<double>(x), y});
            line_.push_back({static_cast<double>(x), y});
        }
        ++x;
    }
}

} // namespace sonotrace
