#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace sonotrace {

/// A picture of the waterfall's colours or greys in another size, in pixels: of those that fall into one the
/// loudest stays, so that no line gets lost; where there are fewer, they are repeated. Row by row, pixels as
/// ColorMap's; others count as unpainted and are black.
std::vector<std::uint32_t> scaledByPeaks(std::span<const std::uint32_t> pixels, std::int32_t width,
                                         std::int32_t newWidth, std::int32_t newHeight);

} // namespace sonotrace
