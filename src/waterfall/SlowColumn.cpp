#include "waterfall/SlowColumn.h"

#include <algorithm>
#include <cmath>

namespace sonotrace {

bool SlowColumn::add(std::span<const double> line, std::int32_t samples, double wanted, LineMerge merge) {
    if (line.size() != size_ || merge != merge_)
        clear();
    size_ = line.size();
    merge_ = merge;
    const bool isFirst = lines_ == 0;
    for (std::size_t i = 0; i < size_; ++i) {
        const double part = merge == LineMerge::Peak ? line[i] : line[i] * line[i];
        if (isFirst)
            gathered_[i] = part;
        else if (merge == LineMerge::Peak)
            gathered_[i] = std::max(gathered_[i], part);
        else
            gathered_[i] += part;
    }
    ++lines_;
    samples_ += samples;
    if (samples_ < wanted)
        return false;
    if (merge == LineMerge::PowerMean)
        for (std::size_t i = 0; i < size_; ++i)
            gathered_[i] = std::sqrt(gathered_[i] / static_cast<double>(lines_));
    // What is over belongs to the next column, so that the mean rate is exact. More than a column is left
    // over by longer lines, or when the time has just become shorter.
    samples_ = samples_ < 2.0 * wanted ? samples_ - wanted : 0.0;
    lines_ = 0;
    return true;
}

} // namespace sonotrace
