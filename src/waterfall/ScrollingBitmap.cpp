#include "waterfall/ScrollingBitmap.h"

#include <algorithm>

namespace sonotrace {

namespace {

constexpr std::int32_t kTileRows = 16; // the pixels of a column that share a cache line

void putWord(std::uint8_t* rgba, std::uint32_t word) {
    rgba[0] = static_cast<std::uint8_t>(word);
    rgba[1] = static_cast<std::uint8_t>(word >> 8U);
    rgba[2] = static_cast<std::uint8_t>(word >> 16U);
    rgba[3] = static_cast<std::uint8_t>(word >> 24U);
}

} // namespace

/// The row behind those that have the same origin as `row` and follow it.
std::int32_t ScrollingBitmap::endOfRowsLike(std::int32_t row) const {
    const std::int32_t origin = origins_[index(row)].load(kRelaxed);
    do
        ++row;
    while (row < kHeight && origins_[index(row)].load(kRelaxed) == origin);
    return row;
}

void ScrollingBitmap::countChange(std::int32_t place) {
    std::atomic<std::uint32_t>& count = changes_[index(place)];
    count.store(count.load(kRelaxed) + 1, std::memory_order_release);
}

void ScrollingBitmap::scrollRows(std::size_t rows, std::int32_t distance) {
    const std::int32_t firstRow = kHeight - static_cast<std::int32_t>(rows);
    for (std::int32_t begin = firstRow, end = 0; begin < kHeight; begin = end) {
        end = endOfRowsLike(begin);
        const std::int32_t origin = origins_[index(begin)].load(kRelaxed);
        std::int32_t source = wrapped(origin + kWidth - distance);
        std::int32_t target = origin; // pixels that have left on the left make room on the right
        // Upward, so that a pixel that is both read and overwritten is read first.
        for (std::int32_t i = 0; i < distance; ++i) {
            for (std::int32_t row = begin; row < end; ++row)
                pixel(row, target).store(word(row, source), kRelaxed);
            countChange(target);
            source = wrapped(source + 1);
            target = wrapped(target + 1);
        }
        for (std::int32_t row = begin; row < end; ++row)
            origins_[index(row)].store(target, std::memory_order_release);
    }
}

void ScrollingBitmap::paintColumn(std::span<const std::uint32_t> words, std::int32_t column) {
    const std::int32_t firstRow = kHeight - static_cast<std::int32_t>(words.size());
    for (std::int32_t begin = firstRow, end = 0; begin < kHeight; begin = end) {
        end = endOfRowsLike(begin);
        const std::int32_t place = wrapped(origins_[index(begin)].load(kRelaxed) + column);
        for (std::int32_t row = begin; row < end; ++row)
            pixel(row, place).store(words[index(row - firstRow)], kRelaxed);
        countChange(place);
    }
}

void ScrollingBitmap::copyRows(std::int32_t firstRow, std::int32_t rows, std::int32_t columns,
                               std::uint8_t* rgba, std::ptrdiff_t bytesPerLine) const {
    const std::int64_t end = std::min<std::int64_t>(std::int64_t{firstRow} + rows, kHeight);
    columns = std::min(columns, kWidth);
    const std::int64_t begin = std::max(firstRow, 0);
    for (std::int64_t row = begin; row < end; row += kTileRows)
        copyTile(static_cast<std::int32_t>(row),
                 static_cast<std::int32_t>(std::min<std::int64_t>(kTileRows, end - row)), columns,
                 rgba + (row - firstRow) * bytesPerLine, bytesPerLine);
}

void ScrollingBitmap::copyTile(std::int32_t firstRow, std::int32_t rows, std::int32_t columns,
                               std::uint8_t* rgba, std::ptrdiff_t bytesPerLine) const {
    std::array<std::int32_t, kTileRows> places;
    for (std::int32_t i = 0; i < rows; ++i)
        places[index(i)] = origin(firstRow + i);
    for (std::int32_t column = 0; column < columns; ++column) {
        std::uint8_t* target = rgba + std::ptrdiff_t{column} * kBytesPerPixel;
        for (std::int32_t i = 0; i < rows; ++i, target += bytesPerLine) {
            const std::int32_t place = places[index(i)];
            putWord(target, word(firstRow + i, place));
            places[index(i)] = wrapped(place + 1);
        }
    }
}

} // namespace sonotrace
