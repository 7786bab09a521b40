#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace sonotrace {

/// The pixels of the waterfall's picture: rows that scroll to the left one by one, each at its own time, at a
/// cost that follows the distance and not the width. Each row is a ring with an origin of its own; scrolling
/// moves the origin. Pixels are stored by columns, because a line is painted as a column: rows that have
/// always scrolled together, which is the rule, are then neighbours in memory.
///
/// One thread paints, another one copies: pixels and origins are relaxed atomics. A copy may hold a
/// half-painted line, never half a pixel.
class ScrollingBitmap {
public:
    static constexpr std::int32_t kWidth = 1536;
    static constexpr std::int32_t kHeight = 1024;
    static constexpr std::int32_t kBytesPerPixel = 4;
    static constexpr std::int32_t kBytesPerRow = kWidth * kBytesPerPixel;

    /// Shifts a row (0 at the top, to 1023) left by 1 to 1535 pixels; its last `distance` pixels keep what
    /// they showed. Capture thread.
    void scrollRow(std::int32_t row, std::int32_t distance) {
        const std::int32_t origin = load(origins_[index(row)]);
        std::int32_t source = wrapped(origin + kWidth - distance);
        std::int32_t target = origin; // pixels that have left on the left make room on the right
        // Upward, so that a pixel that is both read and overwritten is read first.
        for (std::int32_t i = 0; i < distance; ++i) {
            store(pixel(row, target), load(pixel(row, source)));
            source = wrapped(source + 1);
            target = wrapped(target + 1);
        }
        store(origins_[index(row)], target);
    }

    /// Sets the pixel in a row and column (0 at the left, to 1535). Capture thread.
    void setPixel(std::int32_t row, std::int32_t column, std::uint32_t word) {
        store(pixel(row, wrapped(load(origins_[index(row)]) + column)), word);
    }

    /// Copies the first `columns` pixels of `rows` rows, from `firstRow` downward, as red, green, blue and
    /// alpha bytes; a line of the target starts every `bytesPerLine` bytes. What lies outside the picture is
    /// left out: the target keeps what it held there. Any thread.
    void copyRows(std::int32_t firstRow, std::int32_t rows, std::int32_t columns, std::uint8_t* rgba,
                  std::ptrdiff_t bytesPerLine) const;

    /// Where the first pixel lives, for the log.
    const void* address() const { return pixels_.data(); }

private:
    using Word = std::atomic<std::uint32_t>;
    using Origin = std::atomic<std::int32_t>;
    static_assert(Word::is_always_lock_free && Origin::is_always_lock_free);

    // 64 bytes more than a column needs: otherwise the pixels of a row would all compete for the same few
    // places of the processor's cache.
    static constexpr std::int32_t kColumnStride = kHeight + 16;

    static std::size_t index(std::int32_t i) { return static_cast<std::size_t>(i); }
    static std::int32_t wrapped(std::int32_t place) { return place >= kWidth ? place - kWidth : place; }
    template <class T>
    static T load(const std::atomic<T>& value) {
        return value.load(std::memory_order_relaxed);
    }
    template <class T>
    static void store(std::atomic<T>& value, T desired) {
        value.store(desired, std::memory_order_relaxed);
    }
    Word& pixel(std::int32_t row, std::int32_t place) { return pixels_[index(place * kColumnStride + row)]; }
    void copyTile(std::int32_t firstRow, std::int32_t rows, std::int32_t columns, std::uint8_t* rgba,
                  std::ptrdiff_t bytesPerLine) const;

    std::vector<Word> pixels_ = std::vector<Word>(index(kWidth * kColumnStride)); ///< zero at first
    std::vector<Origin> origins_ = std::vector<Origin>(index(kHeight)); ///< place of column 0, by row
};

} // namespace sonotrace
