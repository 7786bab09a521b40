#include "waterfall/ScrollingBitmap.h"

#include <algorithm>
#include <array>

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
        places[index(i)] = load(origins_[index(firstRow + i)]);
    for (std::int32_t column = 0; column < columns; ++column) {
        std::uint8_t* target = rgba + std::ptrdiff_t{column} * kBytesPerPixel;
        for (std::int32_t i = 0; i < rows; ++i, target += bytesPerLine) {
            const std::int32_t place = places[index(i)];
            putWord(target, load(pixels_[index(place * kColumnStride + firstRow + i)]));
            places[index(i)] = wrapped(place + 1);
        }
    }
}

} // namespace sonotrace
