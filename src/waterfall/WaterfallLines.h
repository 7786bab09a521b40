#pragma once

#include "waterfall/WaterfallImage.h"

#include <cstdint>
#include <span>
#include <vector>

namespace sonotrace {

/// The newest lines of a picture as numbers: those in view that were painted with the settings of the last
/// one. Levels are hundredths of a decibel on the display's own scale, from the lowest row up.
struct WaterfallLines {
    ColumnScale scale;
    std::size_t rows = 0;
    std::vector<ColumnNumber> columns;     ///< oldest first; few of them are missing, mostly none
    std::vector<std::uint16_t> hundredths; ///< line by line
    ColumnNumber gapEnd = KeptColumns::kNone;
    std::size_t leftOut = 0; ///< lines in view of other settings

    std::span<const std::uint16_t> line(std::size_t i) const {
        return std::span(hundredths).subspan(i * rows, rows);
    }

    /// The frequency that a row stands for, at its middle.
    double frequencyHz(std::size_t row) const;

    /// Seconds before the newest line as a negative number; not a number before a gap in the sound.
    double seconds(std::size_t i) const;

    /// Seconds from a line to the next.
    double secondsPerLine() const;
};

/// Takes them out of a picture, while it may be painted. Window thread.
WaterfallLines linesInView(const WaterfallImage& image);

} // namespace sonotrace
