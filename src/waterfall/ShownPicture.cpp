#include "waterfall/ShownPicture.h"

#include <algorithm>

namespace sonotrace {

namespace {

constexpr std::int32_t kTileRows = 16; // the pixels of a column that share a cache line

/// Opaque: what has not been painted yet is black.
std::uint32_t screenWord(std::uint32_t abgr) {
    return 0xFF000000U | (abgr & 0xFFU) << 16U | (abgr & 0xFF00U) | (abgr >> 16U & 0xFFU);
}

} // namespace

std::span<const ShownPicture::Piece> ShownPicture::update(const ScrollingBitmap& bitmap, std::int32_t width,
                                                          std::int32_t height) {
    const std::int32_t firstRow = ScrollingBitmap::kHeight - height;
    // Origins, counts, pixels, in this order: see ScrollingBitmap::origin().
    findPieces(bitmap, width, firstRow);
    findChanges(bitmap, firstRow);
    copyChanges(bitmap);
    return pieces_;
}

void ShownPicture::findPieces(const ScrollingBitmap& bitmap, std::int32_t width, std::int32_t firstRow) {
    pieces_.clear();
    for (std::int32_t begin = firstRow, end = firstRow; begin < ScrollingBitmap::kHeight; begin = end) {
        const std::int32_t origin = bitmap.origin(begin);
        do
            ++end;
        while (end < ScrollingBitmap::kHeight && bitmap.origin(end) == origin);
        const std::int32_t left = std::min(width, ScrollingBitmap::kWidth - origin);
        pieces_.push_back({0, begin - firstRow, left, end - begin, origin, begin});
        if (left < width)
            pieces_.push_back({left, begin - firstRow, width - left, end - begin, 0, begin});
    }
}

void ShownPicture::findChanges(const ScrollingBitmap& bitmap, std::int32_t firstRow) {
    const bool hasNewRows = firstRow < firstRow_;
    firstRow_ = firstRow;
    changed_.clear();
    for (std::int32_t place = 0; place < ScrollingBitmap::kWidth; ++place) {
        std::uint32_t& known = counts_[static_cast<std::size_t>(place)];
        const std::uint32_t count = bitmap.changes(place);
        if (hasNewRows || count != known)
            changed_.push_back(place);
        known = count;
    }
}

void ShownPicture::copyChanges(const ScrollingBitmap& bitmap) {
    for (std::int32_t tile = firstRow_; tile < ScrollingBitmap::kHeight; tile += kTileRows) {
        const std::int32_t end = std::min(tile + kTileRows, ScrollingBitmap::kHeight);
        for (const std::int32_t place : changed_)
            for (std::int32_t row = tile; row < end; ++row)
                words_[static_cast<std::size_t>(row * kStride + place)] = screenWord(bitmap.word(row, place));
    }
}

} // namespace sonotrace
