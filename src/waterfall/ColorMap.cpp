#include "waterfall/ColorMap.h"

#include <algorithm>

namespace sonotrace {

namespace {

struct Color {
    std::int32_t red, green, blue;
};

// The segments have different lengths so that the colours look evenly spread; the divisors go with them.
constexpr Color mapColor(std::int32_t i) {
    if (i <= 42)
        return {0, 0, 255 * i / 43};
    if (i <= 86)
        return {0, 255 * (i - 43) / 43, 255};
    if (i <= 119)
        return {0, 255, 255 - 255 * (i - 87) / 32};
    if (i <= 153)
        return {255 * (i - 120) / 33, 255, 0};
    if (i <= 216)
        return {255, 255 - 255 * (i - 154) / 62, 0};
    return {255, 0, 128 * (i - 217) / 38};
}

} // namespace

void ColorMap::initColorTable() {
    for (std::int32_t i = 0; i <= 255; ++i) {
        const auto place = static_cast<std::size_t>(std::clamp(colorTableCount, 0, 255));
        const Color color = mapColor(i);
        redTable[place] = color.red;
        greenTable[place] = color.green;
        blueTable[place] = color.blue;
        colorTableCount = std::min(colorTableCount + 1, 256);
    }
    for (std::size_t i = 0; i < colors_.size(); ++i) {
        const auto brightness = static_cast<std::int32_t>(i);
        colors_[i] = pixelWord(redTable[i], greenTable[i], blueTable[i]);
        greys_[i] = pixelWord(brightness, brightness, brightness);
    }
}

std::optional<std::int32_t> ColorMap::stepOf(std::uint32_t pixel) const {
    for (const auto* map : {&greys_, &colors_}) {
        const auto* const entry = std::ranges::find(*map, pixel);
        if (entry != map->end())
            return static_cast<std::int32_t>(entry - map->begin());
    }
    return std::nullopt;
}

} // namespace sonotrace
