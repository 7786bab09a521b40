#pragma once

#include "scope/ScopeColumns.h"
#include "scope/ScopeTrace.h"

#include <QColor>
#include <QPolygonF>
#include <QSize>

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

class QPainter;

namespace sonotrace {

inline constexpr std::array<const char*, 2> kScopeCursorNames = {"A", "B"};
inline constexpr std::array<QColor, 2> kScopeCursorColours = {QColor(255, 190, 0), QColor(0, 200, 255)};

/// Where the cursors stand, in parts of the width from the left edge.
using ScopeCursorPlaces = std::array<double, 2>;

/// Paints the oscilloscope's face, on the screen and on paper. All it paints comes as points or pixels from
/// the engine; the points' y grows upward. Kept from redraw to redraw. Window thread.
class ScopePainter {
public:
    /// Paints traces that were built for a face of so many points, and its ground, from the painter's origin.
    void paint(QPainter& painter, const QSize& size, const ScopeTrace& trace);

    /// With the painter's font. The active one is a whole line while the keys move it. `thickness` is in
    /// points; 0 is a pixel.
    void paintCursors(QPainter& painter, const QSize& size, const ScopeCursorPlaces& places,
                      std::optional<std::size_t> active, double thickness = 0) const;

private:
    void paintLines(QPainter& painter, const QSize& size, const ScopeTrace& trace);
    void paintColumns(QPainter& painter, const QSize& size, const ScopeTrace& trace);

    ScopeColumns columns_;
    // Reused from redraw to redraw.
    QPolygonF line_;
    std::vector<ScopeColumns::Row> block_;
};

} // namespace sonotrace
