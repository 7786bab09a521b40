#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace sonotrace {

/// A pixel whose bytes in memory are red, green, blue, alpha on a little-endian machine: red in bits 0 to 7,
/// alpha in bits 24 to 31. Components 0 to 255.
constexpr std::uint32_t pixelWord(std::int32_t red, std::int32_t green, std::int32_t blue) {
    return static_cast<std::uint32_t>(red) | static_cast<std::uint32_t>(green) << 8U |
           static_cast<std::uint32_t>(blue) << 16U | 0xFF000000U;
}

/// The waterfall's colours from quiet to loud: black, blue, cyan, green, yellow, red, purple. Filled before
/// the capture starts, only read afterwards.
class ColorMap {
public:
    ColorMap() { initColorTable(); }

    /// Appends the 256 entries at `colorTableCount`. The tables hold one map: a second fill finds them full
    /// and puts every entry into the last place.
    void initColorTable();

    /// Opaque pixels of the steps 0 to 255.
    const std::array<std::uint32_t, 256>& colors() const { return colors_; }

    /// The same in grey, where the step is the brightness.
    const std::array<std::uint32_t, 256>& greys() const { return greys_; }

    /// The step that a pixel of either map shows; none where nothing has been painted.
    std::optional<std::int32_t> stepOf(std::uint32_t pixel) const;

    std::array<std::int32_t, 256> redTable{};
    std::array<std::int32_t, 256> greenTable{};
    std::array<std::int32_t, 256> blueTable{};

private:
    std::int32_t colorTableCount = 0;
    std::array<std::uint32_t, 256> colors_{};
    std::array<std::uint32_t, 256> greys_{};
};

} // namespace sonotrace
