#include "waterfall/PeakScaling.h"

#include "waterfall/ColorMap.h"

#include <algorithm>
#include <unordered_map>

namespace sonotrace {

namespace {

/// Places of a row or a column that fall into one of fewer, at least one.
struct Places {
    std::size_t begin, end;

    Places(std::size_t i, std::size_t size, std::size_t newSize)
        : begin(i * size / newSize), end(std::max((i + 1) * size / newSize, begin + 1)) {}
};

/// Ranks of pixels: 0 for none, and the louder of one map the higher.
class Ranks {
public:
    Ranks() {
        const ColorMap map;
        for (const auto* colors : {&map.greys(), &map.colors()})
            for (const std::uint32_t pixel : *colors) {
                pixels_.push_back(pixel);
                ranks_.try_emplace(pixel, static_cast<std::uint16_t>(pixels_.size() - 1));
            }
    }

    std::uint16_t of(std::uint32_t pixel) {
        if (pixel != last_) { // neighbours are often the same
            const auto found = ranks_.find(pixel);
            last_ = pixel;
            rank_ = found != ranks_.end() ? found->second : std::uint16_t{0};
        }
        return rank_;
    }
    std::uint32_t pixel(std::uint16_t rank) const { return pixels_[rank]; }

private:
    std::vector<std::uint32_t> pixels_{0xFF000000U};
    std::unordered_map<std::uint32_t, std::uint16_t> ranks_;
    std::uint32_t last_ = 0;
    std::uint16_t rank_ = 0;
};

} // namespace

std::vector<std::uint32_t> scaledByPeaks(std::span<const std::uint32_t> pixels, std::int32_t width,
                                         std::int32_t newWidth, std::int32_t newHeight) {
    const auto columns = static_cast<std::size_t>(width);
    const std::size_t rows = pixels.size() / columns;
    const auto newColumns = static_cast<std::size_t>(newWidth);
    const auto newRows = static_cast<std::size_t>(newHeight);
    Ranks ranks;
    std::vector<std::uint32_t> scaled;
    scaled.reserve(newColumns * newRows);
    std::vector<std::uint16_t> loudest(columns);
    for (std::size_t y = 0; y < newRows; ++y) {
        const Places of(y, rows, newRows);
        std::ranges::fill(loudest, std::uint16_t{0});
        for (std::size_t row = of.begin; row < of.end; ++row)
            for (std::size_t x = 0; x < columns; ++x)
                loudest[x] = std::max(loudest[x], ranks.of(pixels[row * columns + x]));
        for (std::size_t x = 0; x < newColumns; ++x) {
            const Places in(x, columns, newColumns);
            scaled.push_back(
                ranks.pixel(*std::max_element(loudest.begin() + static_cast<std::ptrdiff_t>(in.begin),
                                              loudest.begin() + static_cast<std::ptrdiff_t>(in.end))));
        }
    }
    return scaled;
}

} // namespace sonotrace
