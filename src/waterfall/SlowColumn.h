#pragma once

#include "base/ZeroedArray.h"
#include "waterfall/WaterfallParameters.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace sonotrace {

/// Makes one line of magnitudes out of all lines of a time, which is counted in samples. Capture thread; what
/// it needs is allocated with it.
class SlowColumn {
public:
    /// Takes the squared magnitudes of a line that `samples` samples have been read for. True when `wanted`
    /// samples have gone by: then the column is in magnitudes(), until the next call. A line of another
    /// length, or another way to merge, begins anew.
    bool add(std::span<const float> powers, std::int32_t samples, double wanted, LineMerge merge);

    /// `count` of them; those behind the line's are any.
    std::span<const double> magnitudes(std::size_t count) const { return {gathered_.data(), count}; }

    /// Forgets what has been gathered.
    void clear() {
        lines_ = 0;
        samples_ = 0;
    }

private:
    ZeroedArray<double> gathered_{kLargestFrameLength}; ///< squares: peaks or sums; then their roots
    std::size_t size_ = 0;
    LineMerge merge_ = LineMerge::Peak;
    std::int64_t lines_ = 0;
    double samples_ = 0; ///< since the last column
};

} // namespace sonotrace
