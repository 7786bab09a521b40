#pragma once

#include "base/ChannelFold.h"
#include "base/FftWindows.h"
#include "waterfall/RowBins.h"

#include <cstdint>

namespace sonotrace {

/// What the columns of a picture are made of. Columns that differ in this have times or rows of their own.
struct ColumnSource {
    double samples = 0; ///< from a column to the next
    FftWindowType window = 0;
    ChannelFold channel = ChannelFold::Sum;
    std::int32_t speedup = 1; ///< lines for the samples of a transform
    std::int32_t merge = -1;  ///< LineMerge of slow columns
    bool operator==(const ColumnSource&) const = default;
};

/// What the rows and the distances of columns mean.
struct ColumnScale {
    ColumnSource source;
    RowBins::Scale rows;
    float width = 0; ///< points of the view
    bool operator==(const ColumnScale&) const = default;

    bool hasRowsOf(const ColumnScale& other) const {
        return rows.startFreq == other.rows.startFreq && rows.endFreq == other.rows.endFreq &&
               rows.height == other.rows.height;
    }
    bool hasRateOf(const ColumnScale& other) const {
        return source.samples == other.source.samples && width == other.width;
    }
};

} // namespace sonotrace
