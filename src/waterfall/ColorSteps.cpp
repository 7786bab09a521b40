#include "waterfall/ColorSteps.h"

#include "waterfall/ColorMap.h"

namespace sonotrace {

QImage colorSteps(bool isColoured) {
    constexpr int kSteps = 255; // that are ever painted
    const ColorMap map;
    QImage steps(1, kSteps, QImage::Format_RGBA8888);
    for (int step = 0; step < kSteps; ++step) {
        const auto i = static_cast<std::size_t>(step);
        const std::uint32_t word = isColoured ? map.colors()[i] : map.greys()[i];
        const auto part = [word](unsigned shift) { return static_cast<int>(word >> shift & 0xFFU); };
        steps.setPixelColor(0, kSteps - 1 - step, QColor(part(0), part(8), part(16)));
    }
    return steps;
}

} // namespace sonotrace
