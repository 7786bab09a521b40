#include "spectrum/SpectrumFft.h"

#include <bit>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

/// 2 pi to 15 digits: the bits of every spectrum depend on it.
constexpr double k2Pi = 6.28318530717959;

/// Points that, with their twiddle factors, stay in the first-level cache.
constexpr std::size_t kCachedPoints = 512;

/// Stages that join at most so many points have more blocks than factors: their factor is held over the
/// blocks.
constexpr std::size_t kFewFactors = 16;

void reverseBits(double* data, std::size_t points) {
    std::size_t j = 0;
    for (std::size_t i = 0; i < points; ++i) {
        if (j > i) {
            std::swap(data[2 * j], data[2 * i]);
            std::swap(data[2 * j + 1], data[2 * i + 1]);
        }
        std::size_t bit = points / 2;
        while (bit >= 1 && j >= bit) {
            j -= bit;
            bit /= 2;
        }
        j += bit;
    }
}

/// Joins two points: lower + factor * upper and lower - factor * upper, rounded once, when they are stored.
inline void butterfly(double* lower, double* upper, long double re, long double im) {
    const long double productRe = re * upper[0] - im * upper[1];
    const long double productIm = re * upper[1] + im * upper[0];
    upper[0] = static_cast<double>(lower[0] - productRe);
    upper[1] = static_cast<double>(lower[1] - productIm);
    lower[0] = static_cast<double>(lower[0] + productRe);
    lower[1] = static_cast<double>(lower[1] + productIm);
}

} // namespace

void SpectrumFft::transform(std::span<double> interleaved) {
    const std::size_t points = interleaved.size() / 2;
    if (points < 2 || !std::has_single_bit(points))
        return;
    if (twiddles_.size() < points - 1)
        buildTwiddles(points);
    reverseBits(interleaved.data(), points);
    combineAll(interleaved.data(), points);
}

/// Each stage turns its factor by a recurrence from two sines. Its rounding is part of the spectrum's noise
/// floor, which is why the factors are not computed one by one, more exactly.
void SpectrumFft::buildTwiddles(std::size_t points) {
    twiddles_.clear();
    twiddles_.reserve(points - 1);
    for (std::size_t half = 1; half < points; half *= 2) {
        const double theta = k2Pi / static_cast<double>(2 * half);
        const long double halfSine = std::sin(0.5 * theta);
        const long double stepRe = -2.0L * halfSine * halfSine;
        const long double stepIm = std::sin(theta);
        Twiddle factor{1.0L, 0.0L};
        for (std::size_t k = 0; k < half; ++k) {
            twiddles_.push_back(factor);
            const long double re = factor.re;
            factor.re = re + (re * stepRe - factor.im * stepIm);
            factor.im = factor.im + (factor.im * stepRe + re * stepIm);
        }
    }
}

/// Halves first, so that a block is finished while it is in the cache. Butterflies of one stage are
/// independent of each other: their order does not show in the result.
void SpectrumFft::combineAll(double* data, std::size_t points) const {
    if (points <= kCachedPoints) {
        combineSmall(data, points);
        return;
    }
    const std::size_t half = points / 2;
    combineAll(data, half);
    combineAll(data + 2 * half, half);
    combine(data, stage(half), half);
}

void SpectrumFft::combineSmall(double* data, std::size_t points) const {
    std::size_t half = 1;
    for (; half < points && half <= kFewFactors; half *= 2) {
        for (std::size_t k = 0; k < half; ++k) {
            const Twiddle factor = stage(half)[k];
            for (std::size_t i = k; i < points; i += 2 * half)
                butterfly(data + 2 * i, data + 2 * (i + half), factor.re, factor.im);
        }
    }
    for (; half < points; half *= 2) {
        for (std::size_t block = 0; block < points; block += 2 * half)
            combine(data + 2 * block, stage(half), half);
    }
}

void SpectrumFft::combine(double* lower, const Twiddle* twiddles, std::size_t half) {
    double* const upper = lower + 2 * half;
    for (std::size_t k = 0; k < half; ++k)
        butterfly(lower + 2 * k, upper + 2 * k, twiddles[k].re, twiddles[k].im);
}

} // namespace sonotrace
