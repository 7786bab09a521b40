#pragma once

#include "base/Published.h"
#include "base/ZeroedArray.h"
#include "waterfall/ColumnScale.h"
#include "waterfall/ScrollingBitmap.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

namespace sonotrace {

/// Numbers for the columns that were ever painted, which they keep while they move to the left: the place in
/// the picture plus the pixels it has scrolled by.
using ColumnNumber = std::int64_t;

/// What one column holds, whatever its colours show of it.
struct ColumnLevels {
    float lowestDb = 0; ///< on the display's own scale
    float highestDb = 0;
    float minDB = 0; ///< limits of the colours
    float maxDB = 0;
};

/// What the columns of the picture were painted from, until they have left it: the level of each row, on the
/// display's own scale, in hundredths of a decibel. The capture thread keeps, any thread reads; a column that
/// is just being replaced is not there.
class KeptColumns {
public:
    static constexpr ColumnNumber kNone = std::numeric_limits<ColumnNumber>::min();

    /// Keeps a column with its rows from the lowest one up, at most ScrollingBitmap::kHeight. Capture thread.
    void keep(ColumnNumber column, const ColumnLevels& levels, const ColumnScale& scale,
              std::span<const std::uint16_t> hundredths);

    /// Nothing for a column that was never kept or whose place another one has taken.
    std::optional<ColumnLevels> levels(ColumnNumber column) const;

    struct NumberedScale {
        ColumnScale scale;
        std::uint32_t number = 0; ///< from 1 on, in the order in which columns were kept
    };

    /// What the newest columns are made of; nothing before the first one, and just when it changes.
    std::optional<NumberedScale> newestScale() const { return scale_.load(); }

    /// Copies the lowest rows of a column of that scale. Whether there is such a column.
    bool copyRows(ColumnNumber column, std::uint32_t scaleNumber, std::span<std::uint16_t> hundredths) const;

private:
    static constexpr std::size_t kColumns = ScrollingBitmap::kWidth;
    static constexpr std::size_t kRows = ScrollingBitmap::kHeight;
    static constexpr std::size_t kRowsPerWord = 4; // so that keeping them costs next to nothing
    using Word = std::atomic<std::uint64_t>;
    static_assert(Word::is_always_lock_free && std::atomic<ColumnNumber>::is_always_lock_free);

    struct Kept {
        std::atomic<ColumnNumber> column{kNone};
        std::atomic<float> lowestDb, highestDb, minDB, maxDB;
        std::atomic<std::uint32_t> scale; ///< its number
    };
    static std::size_t slot(ColumnNumber column) {
        constexpr auto kSlots = static_cast<ColumnNumber>(kColumns);
        return static_cast<std::size_t>((column % kSlots + kSlots) % kSlots);
    }

    std::array<Kept, kColumns> kept_;
    ZeroedArray<Word> rows_{kColumns * kRows / kRowsPerWord}; ///< a column's rows together
    Published<NumberedScale> scale_;
    NumberedScale newest_; ///< capture thread
};

} // namespace sonotrace
