#include "scope/ScopeColumns.h"

#include "base/WideVectors.h"
#include "scope/ScopeTrace.h"

#include <algorithm>
#include <cmath>

namespace sonotrace {

namespace {

constexpr std::uint32_t kBlack = 0xff000000;
constexpr int kGreenShift = 8;

/// What a line of this opacity adds to the depth of a pixel's green: -ln(1 - opacity), near enough, and 3 if
/// opaque. The depths of lines that lie over one another add up.
float depthOf(float opacity) {
    return 3.0F * opacity * (2.0F - opacity) / (6.0F - opacity * (6.0F - opacity));
}

/// Green of a pixel, 0 to 255: 1 - exp(-depth), with e^x as (e^(x / 8))^8, so that the compiler vectorises
/// it.
std::uint32_t greenOf(float depth) {
    const float eighth = 0.125F * depth;
    float power = 1.0F + eighth * (1.0F + 0.5F * eighth);
    power *= power;
    power *= power;
    power *= power;
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(255.5F - 255.0F / power));
}

/// Sums up the steps from row to row, paints the sums, and leaves no steps behind. (With wide vectors not
/// only for their width: Qt's fills leave the upper halves of the registers in use, and narrow ones then are
/// slow.)
SONOTRACE_WIDE_VECTORS void paintRows(std::span<ScopeColumns::Row> rows,
                                      std::span<ScopeColumns::Steps> steps) {
    for (std::size_t y = 0; y < rows.size(); ++y) {
        for (std::size_t x = 0; x < ScopeColumns::kWidth; ++x) {
            const float depth = steps[y][x + 1];
            rows[y][x] = kBlack | greenOf(depth) << kGreenShift;
            steps[y + 1][x + 1] += depth;
            steps[y][x + 1] = 0.0F;
        }
    }
}

} // namespace

void ScopeColumns::paint(std::span<const std::span<const PlotPoint>> lines, double scale, int first,
                         std::span<Row> rows) {
    steps_.resize(rows.size() + 2);
    const auto height = static_cast<double>(rows.size());
    const double lineWidth = std::min(1.0, ScopeTrace::kLineWidth * scale);
    const auto inPixels = [&](const PlotPoint& point) {
        return PlotPoint{point.x * scale - first, height - point.y * scale};
    };
    for (const std::span<const PlotPoint> line : lines) {
        auto next = std::ranges::lower_bound(line, (first - 2) / scale, {}, &PlotPoint::x);
        if (next == line.end())
            continue;
        PlotPoint from = inPixels(*next);
        while (++next != line.end() && from.x < kWidth + 1) {
            const PlotPoint to = inPixels(*next);
            add(from, to, lineWidth);
            from = to;
        }
    }
    paintRows(rows, steps_);
    steps_.resize(rows.size());
}

/// Adds a piece of a line, less than a pixel wide, as an upright bar in the middle of its x. The bar is a
/// pixel high at least, and the fainter the shorter the piece.
void ScopeColumns::add(const PlotPoint& from, const PlotPoint& to, double lineWidth) {
    // The two columns between whose middles the bar stands get their shares of it.
    const double column = 0.5 * (from.x + to.x + 1.0);
    if (column < 0.0 || column >= kWidth + 1)
        return;
    const auto left = static_cast<std::size_t>(column);
    const double rise = std::abs(to.y - from.y);
    const double height = std::max(rise, 1.0);
    const auto opacity = static_cast<float>(lineWidth * std::max(rise, to.x - from.x) / height);
    const auto share = static_cast<float>(column - static_cast<double>(left));
    const std::array<float, 2> depths = {depthOf(opacity * (1.0F - share)), depthOf(opacity * share)};
    const double top = 0.5 * (from.y + to.y - height);
    step(left, top, depths);
    step(left, top + height, {-depths[0], -depths[1]});
}

/// All rows are deeper from `row` on, which may lie within a pixel.
void ScopeColumns::step(std::size_t column, double row, const std::array<float, 2>& depths) {
    const double inside = std::clamp(row, 0.0, static_cast<double>(steps_.size() - 2));
    const auto y = static_cast<std::size_t>(inside);
    const auto below = static_cast<float>(inside - static_cast<double>(y));
    for (std::size_t i = 0; i < depths.size(); ++i) {
        steps_[y][column + i] += depths[i] * (1.0F - below);
        steps_[y + 1][column + i] += depths[i] * below;
    }
}

} // namespace sonotrace
