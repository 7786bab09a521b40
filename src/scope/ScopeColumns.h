#pragma once

#include "base/PlotShapes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace sonotrace {

/// Paints traces with so many samples a pixel that a line through each of them would cost too much. The
/// picture is that of the line, half a point wide and antialiased: brighter where it passes more often. It is
/// painted in blocks of a few columns, whose sums stay in the processor's cache. Window thread.
class ScopeColumns {
public:
    static constexpr std::size_t kWidth = 32; ///< columns of a block

    using Row = std::array<std::uint32_t, kWidth>; ///< pixels, 0xffRRGGBB

    /// How much deeper in green each column of a row is than in the row above, with the columns left and
    /// right of the block.
    using Steps = std::array<float, kWidth + 2>;

    /// Paints the block from column `first` on, from the top row down. The x of a line's points never falls;
    /// a point is `scale` pixels.
    void paint(std::span<const std::span<const PlotPoint>> lines, double scale, int first,
               std::span<Row> rows);

private:
    void add(const PlotPoint& from, const PlotPoint& to, double lineWidth);
    void step(std::size_t column, double row, const std::array<float, 2>& depths);

    std::vector<Steps> steps_; ///< of each row; between calls all zero but for the columns at the sides
};

} // namespace sonotrace
