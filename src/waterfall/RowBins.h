#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

namespace sonotrace {

/// Which bins each row of the picture stands for. With b = 44100 / len hertz a bin and d = (end - start) /
/// height hertz a row, row y begins at bin trunc((start + y * d) / b) and ends before the one where row y + 1
/// begins. The edges are the same from line to line, so they are kept.
class RowBins {
public:
    static constexpr std::size_t kMostRows = 1024;

    /// What the edges depend on.
    struct Scale {
        double startFreq = 0.0; ///< Hz
        double endFreq = 0.0;   ///< Hz; below the start the rows step downward, one bin each
        float height = 0.0F;    ///< points, 0 to kMostRows
        std::int32_t len = 0;   ///< samples of the transform
        std::size_t bins = 0;   ///< magnitudes there are
        bool operator==(const Scale&) const = default;
    };

    /// Any frequencies; edges outside the magnitudes are moved to their ends.
    void setScale(const Scale& scale);

    /// One for each whole or begun point of the height.
    static std::size_t rowsOf(float height) {
        return std::min(static_cast<std::size_t>(std::ceil(height)), kMostRows);
    }
    std::size_t rows() const { return rows_; }

    /// The bin behind the last one that a row needs.
    std::size_t end() const { return end_; }

    /// The mean of the row's bins if there are at least two, otherwise the bin it begins in.
    double value(std::span<const double> magnitudes, std::size_t row) const {
        const std::size_t lo = edges_[row];
        const std::size_t hi = edges_[row + 1];
        if (hi < lo + 2)
            return magnitudes[std::min(lo, magnitudes.size() - 1)];
        double sum = 0.0;
        for (std::size_t bin = lo; bin < hi; ++bin)
            sum += magnitudes[bin];
        return sum / static_cast<double>(hi - lo);
    }

private:
    Scale scale_;
    std::size_t rows_ = 0;
    std::size_t end_ = 0;
    std::array<std::uint32_t, kMostRows + 1> edges_{};
};

} // namespace sonotrace
