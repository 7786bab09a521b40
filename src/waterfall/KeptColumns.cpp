#include "waterfall/KeptColumns.h"

#include <cstring>

namespace sonotrace {

namespace {
constexpr auto kAcquire = std::memory_order_acquire;
constexpr auto kRelease = std::memory_order_release;
constexpr auto kRelaxed = std::memory_order_relaxed;

/// Calls with the first row of each word and the rows in it, which the compiler knows in all but the last.
template <typename Function>
void forFours(std::size_t rows, Function function) {
    constexpr std::size_t kFour = 4;
    std::size_t row = 0;
    for (; row + kFour <= rows; row += kFour)
        function(row, kFour);
    if (row < rows)
        function(row, rows - row);
}
} // namespace

void KeptColumns::keep(ColumnNumber column, const ColumnLevels& levels, const ColumnScale& scale,
                       std::span<const std::uint16_t> hundredths) {
    if (newest_.number == 0 || !(newest_.scale == scale)) {
        newest_ = {scale, newest_.number + 1};
        scale_.store(newest_);
    }
    Kept& kept = kept_[slot(column)];
    kept.column.store(kNone, kRelaxed); // a reader in between finds nothing rather than a mixture
    kept.lowestDb.store(levels.lowestDb, kRelease);
    kept.highestDb.store(levels.highestDb, kRelease);
    kept.minDB.store(levels.minDB, kRelease);
    kept.maxDB.store(levels.maxDB, kRelease);
    kept.scale.store(newest_.number, kRelease);
    Word* word = &rows_[slot(column) * kRows / kRowsPerWord];
    forFours(hundredths.size(), [&](std::size_t row, std::size_t count) {
        std::uint64_t four = 0;
        std::memcpy(&four, &hundredths[row], count * sizeof(std::uint16_t));
        (word++)->store(four, kRelease);
    });
    kept.column.store(column, kRelease);
}

std::optional<ColumnLevels> KeptColumns::levels(ColumnNumber column) const {
    const Kept& kept = kept_[slot(column)];
    if (kept.column.load(kAcquire) != column)
        return std::nullopt;
    const ColumnLevels levels{kept.lowestDb.load(kAcquire), kept.highestDb.load(kAcquire),
                              kept.minDB.load(kAcquire), kept.maxDB.load(kAcquire)};
    if (kept.column.load(kRelaxed) != column)
        return std::nullopt;
    return levels;
}

bool KeptColumns::copyRows(ColumnNumber column, std::uint32_t scaleNumber,
                           std::span<std::uint16_t> hundredths) const {
    const Kept& kept = kept_[slot(column)];
    if (kept.column.load(kAcquire) != column || kept.scale.load(kAcquire) != scaleNumber)
        return false;
    const Word* word = &rows_[slot(column) * kRows / kRowsPerWord];
    forFours(hundredths.size(), [&](std::size_t row, std::size_t count) {
        const std::uint64_t four = (word++)->load(kAcquire);
        std::memcpy(&hundredths[row], &four, count * sizeof(std::uint16_t));
    });
    return kept.column.load(kRelaxed) == column;
}

} // namespace sonotrace
