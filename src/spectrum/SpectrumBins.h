#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

namespace sonotrace {

/// Power of each bin, |X|², from 0 Hz to half the sample rate, and what it has to be compared with.
struct SpectrumBins {
    std::span<const double> power; ///< fftSize / 2 + 1 of them, or none
    double fftSize = 0;
    double windowSum = 0; ///< of the weights

    bool isEmpty() const { return power.empty(); }

    /// Level of a bin, 0 dBFS being the power of a sine with a peak of 32768: so much such a sine has in the
    /// middle of its bin. Minus infinity where there is no power. The two bins at the ends are not one of a
    /// pair, as all others are: their power counts half as much.
    double levelDbfs(std::size_t bin) const {
        const double ofFullScale = 0.5 * windowSum * 32768.0;
        const double part = bin == 0 || bin + 1 == power.size() ? 0.5 : 1.0;
        return 10.0 * std::log10(part * power[bin] / (ofFullScale * ofFullScale));
    }
};

} // namespace sonotrace
