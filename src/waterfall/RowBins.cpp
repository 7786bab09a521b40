#include "waterfall/RowBins.h"

#include "base/SampleRate.h"

#include <cmath>

namespace sonotrace {

namespace {

/// The bin a position falls into, at most `bins`; negative ones and not a number are 0.
std::uint32_t binIndex(double position, std::size_t bins) {
    if (!(position > 0.0))
        return 0;
    return static_cast<std::uint32_t>(std::min(position, static_cast<double>(bins)));
}

} // namespace

void RowBins::setScale(const Scale& scale) {
    if (scale == scale_)
        return;
    scale_ = scale;
    rows_ = rowsOf(scale.height);
    const double binWidth = kSampleRate / scale.len;
    const double step = (scale.endFreq - scale.startFreq) / static_cast<double>(scale.height);
    for (std::size_t y = 0; y <= rows_; ++y)
        edges_[y] = binIndex((scale.startFreq + static_cast<double>(y) * step) / binWidth, scale.bins);
    const std::size_t last =
        *std::max_element(edges_.begin(), edges_.begin() + static_cast<std::ptrdiff_t>(rows_) + 1);
    end_ = std::min(last + 1, scale.bins);
}

} // namespace sonotrace
