#pragma once

#include "base/ZeroedArray.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

namespace sonotrace {

/// The pixels of the waterfall's picture: rows that scroll to the left, each at its own time, at a cost that
/// follows the distance and not the width. Each row is a ring with an origin of its own; scrolling moves the
/// origin. Pixels are stored by columns, because a line is painted as a column: rows that have always
/// scrolled together, which is the rule, are then neighbours in memory.
///
/// One thread paints, another one copies: pixels and origins are atomics. A copy may hold a half-painted
/// line, never half a pixel.
class ScrollingBitmap {
public:
    static constexpr std::int32_t kWidth = 1536;
    static constexpr std::int32_t kHeight = 1024;
    static constexpr std::int32_t kBytesPerPixel = 4;
    static constexpr std::int32_t kBytesPerRow = kWidth * kBytesPerPixel;

    /// Shifts the last `rows` rows left by 1 to 1535 pixels; their last `distance` pixels keep what they
    /// showed. Capture thread.
    void scrollRows(std::size_t rows, std::int32_t distance);

    /// Sets the pixels in a column (0 at the left, to 1535) of the last rows, as many as there are words.
    /// Capture thread.
    void paintColumn(std::span<const std::uint32_t> words, std::int32_t column);

    /// Copies the first `columns` pixels of `rows` rows, from `firstRow` downward, as red, green, blue and
    /// alpha bytes; a line of the target starts every `bytesPerLine` bytes. What lies outside the picture is
    /// left out: the target keeps what it held there. Any thread.
    void copyRows(std::int32_t firstRow, std::int32_t rows, std::int32_t columns, std::uint8_t* rgba,
                  std::ptrdiff_t bytesPerLine) const;

    /// For a copy that is kept up to date. A row's pixels are in the places from its origin on, and from the
    /// last place go on with the first; a place's count of changes grows after its pixels have changed. Who
    /// reads origins first, then counts, then the pixels of the places whose counts are new, has all that the
    /// origins show, and finds by the counts the next time what was painted meanwhile. Any thread.
    std::int32_t origin(std::int32_t row) const { return origins_[index(row)].load(kAcquire); }
    std::uint32_t changes(std::int32_t place) const { return changes_[index(place)].load(kAcquire); }
    std::uint32_t word(std::int32_t row, std::int32_t place) const {
        return pixel(row, place).load(kRelaxed);
    }

    /// Where the first pixel lives, for the log.
    const void* address() const { return pixels_.data(); }

private:
    using Word = std::atomic<std::uint32_t>;
    using Origin = std::atomic<std::int32_t>;
    static_assert(Word::is_always_lock_free && Origin::is_always_lock_free);
    static constexpr auto kRelaxed = std::memory_order_relaxed;
    static constexpr auto kAcquire = std::memory_order_acquire;

    // 64 bytes more than a column needs: otherwise the pixels of a row would all compete for the same few
    // places of the processor's cache.
    static constexpr std::int32_t kColumnStride = kHeight + 16;

    static std::size_t index(std::int32_t i) { return static_cast<std::size_t>(i); }
    static std::int32_t wrapped(std::int32_t place) { return place >= kWidth ? place - kWidth : place; }
    Word& pixel(std::int32_t row, std::int32_t place) { return pixels_[index(place * kColumnStride + row)]; }
    const Word& pixel(std::int32_t row, std::int32_t place) const {
        return pixels_[index(place * kColumnStride + row)];
    }
    std::int32_t endOfRowsLike(std::int32_t row) const;
    void countChange(std::int32_t place);
    void copyTile(std::int32_t firstRow, std::int32_t rows, std::int32_t columns, std::uint8_t* rgba,
                  std::ptrdiff_t bytesPerLine) const;

    ZeroedArray<Word> pixels_{index(kWidth * kColumnStride)};
    std::array<Origin, kHeight> origins_{};                    ///< place of column 0, by row
    std::array<std::atomic<std::uint32_t>, kWidth> changes_{}; ///< by place
};

} // namespace sonotrace
