#include "waterfall/SlowColumn.h"

#include "base/WideVectors.h"

#include <algorithm>
#include <cmath>

namespace sonotrace {

namespace {

SONOTRACE_WIDE_VECTORS void copy(std::span<const float> powers, double* gathered) {
    for (std::size_t i = 0; i < powers.size(); ++i)
        gathered[i] = static_cast<double>(powers[i]);
}

SONOTRACE_WIDE_VECTORS void keepPeaks(std::span<const float> powers, double* gathered) {
    for (std::size_t i = 0; i < powers.size(); ++i) {
        const auto power = static_cast<double>(powers[i]);
        gathered[i] = power > gathered[i] ? power : gathered[i];
    }
}

SONOTRACE_WIDE_VECTORS void sum(std::span<const float> powers, double* gathered) {
    for (std::size_t i = 0; i < powers.size(); ++i)
        gathered[i] += static_cast<double>(powers[i]);
}

/// The largest root is the root of the largest, to the bit.
SONOTRACE_WIDE_VECTORS void takeRoots(double* gathered, std::size_t size, double lines) {
    for (std::size_t i = 0; i < size; ++i)
        gathered[i] = std::sqrt(gathered[i] / lines);
}

} // namespace

bool SlowColumn::add(std::span<const float> powers, std::int32_t samples, double wanted, LineMerge merge) {
    if (powers.size() != size_ || merge != merge_)
        clear();
    size_ = powers.size();
    merge_ = merge;
    if (lines_ == 0)
        copy(powers, gathered_.data());
    else if (merge == LineMerge::Peak)
        keepPeaks(powers, gathered_.data());
    else
        sum(powers, gathered_.data());
    ++lines_;
    samples_ += samples;
    if (samples_ < wanted)
        return false;
    takeRoots(gathered_.data(), size_, merge == LineMerge::PowerMean ? static_cast<double>(lines_) : 1.0);
    // What is over belongs to the next column, so that the mean rate is exact. More than a column is left
    // over by longer lines, or when the time has just become shorter.
    samples_ = samples_ < 2.0 * wanted ? samples_ - wanted : 0.0;
    lines_ = 0;
    return true;
}

} // namespace sonotrace
