#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace sonotrace {

/// The spectrum analyzer's transform: complex, in place, radix 2, decimation in time, with the kernel
/// exp(+2 pi i k n / N) and no scaling. The array holds doubles; twiddle factors and butterflies are computed
/// in extended precision. Window thread.
class SpectrumFft {
public:
    /// Transforms re, im, re, im, ... of a power of two of points; other sizes are left as they are.
    /// Allocates only when the size is larger than any before.
    void transform(std::span<double> interleaved);

private:
    struct Twiddle {
        long double re;
        long double im;
    };

    void buildTwiddles(std::size_t points);
    void combineAll(double* data, std::size_t points) const;
    void combineSmall(double* data, std::size_t points) const;
    static void combine(double* lower, const Twiddle* twiddles, std::size_t half);

    /// The factors of the stage that joins blocks of `half` points, `half` of them.
    const Twiddle* stage(std::size_t half) const { return &twiddles_[half - 1]; }

    /// All stages in a row, the smallest first. They do not depend on the transform's size, so that a larger
    /// transform only adds stages.
    std::vector<Twiddle> twiddles_;
};

} // namespace sonotrace
