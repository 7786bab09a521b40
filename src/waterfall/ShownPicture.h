#pragma once

#include "base/ZeroedArray.h"
#include "waterfall/ScrollingBitmap.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace sonotrace {

/// A copy of the bitmap as screens take it, row by row in words 0xFFRRGGBB, that is brought up to date at the
/// cost of what was painted since. It scrolls as the bitmap does, without moving a pixel: a row is shown in
/// two pieces, from its origin to the last place and from the first place on. Window thread.
class ShownPicture {
public:
    /// Words from a row to the next: more than a row has, for the reason that the bitmap has.
    static constexpr std::int32_t kStride = ScrollingBitmap::kWidth + 16;

    /// A rectangle of the view and the place in the copy where its pixels are, from the top left.
    struct Piece {
        std::int32_t x, y, width, height, copyX, copyY;
    };

    /// Brings the copy up to date for a view of that many points, at most the bitmap's, and says what the
    /// view consists of: two pieces as long as all of its rows have scrolled together.
    std::span<const Piece> update(const ScrollingBitmap& bitmap, std::int32_t width, std::int32_t height);

    /// As many rows as the bitmap has.
    const std::uint32_t* words() const { return words_.data(); }

    /// Columns that the last update copied.
    std::size_t copiedColumns() const { return changed_.size(); }

private:
    void findPieces(const ScrollingBitmap& bitmap, std::int32_t width, std::int32_t firstRow);
    void findChanges(const ScrollingBitmap& bitmap, std::int32_t firstRow);
    void copyChanges(const ScrollingBitmap& bitmap);

    ZeroedArray<std::uint32_t> words_{std::size_t{kStride} * ScrollingBitmap::kHeight};
    std::int32_t firstRow_ = ScrollingBitmap::kHeight;            ///< those above are not up to date
    std::array<std::uint32_t, ScrollingBitmap::kWidth> counts_{}; ///< of changes, as of the last update
    std::vector<std::int32_t> changed_;
    std::vector<Piece> pieces_;
};

} // namespace sonotrace
