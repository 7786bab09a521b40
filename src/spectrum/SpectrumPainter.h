#pragma once

#include "spectrum/SpectrumGeometry.h"
#include "spectrum/SpectrumOverlays.h"
#include "spectrum/SpectrumTrace.h"
#include "widgets/CachedTexts.h"

#include <QChar>
#include <QFont>
#include <QRect>

#include <array>
#include <optional>
#include <span>
#include <vector>

class QPainter;

namespace sonotrace {

struct GridLabel;
struct SpectrumGrid;

/// A frequency that the user has marked.
struct SpectrumMarker {
    QChar letter;
    double frequencyHz = 0;
    bool operator==(const SpectrumMarker&) const = default;
};

/// A spectrum as it is painted.
struct PaintedSpectrum {
    std::span<const double> power; ///< |X|² of each bin, mirrored upper half included, or of half of them
    double fftSize = 0;            ///< chosen now, which may be newer than the spectrum
};

/// What is painted over the trace besides the overlays.
struct SpectrumMarks {
    std::vector<SpectrumMarker> markers;
    std::optional<int> column; ///< pointed at with the keys
};

/// Paints the spectrum's face at the size it is built for, on the screen and on paper. What it paints comes
/// as numbers from the engine, whose y grows upward. Kept from redraw to redraw. Window thread.
class SpectrumPainter {
public:
    /// Computes trace and overlays for a face of so many points. `overlays` may be null.
    void build(const QSize& size, const PaintedSpectrum& spectrum, const SpectrumDisplay& display,
               SpectrumOverlays* overlays);

    /// Paints what was built, its ground too, from the painter's origin. `font` is that of legend and marks
    /// and, in another size, of the grid.
    void paint(QPainter& painter, const QFont& font, const SpectrumMarks& marks);

    const SpectrumTrace& trace() const { return trace_; }

    /// The rows in which the trace is, or the upper ends of its bars are.
    QRect traceRows() const;

private:
    void paintTrace(QPainter& painter) const;
    void paintOverlays(QPainter& painter) const;
    void paintLegend(QPainter& painter);
    void paintMarks(QPainter& painter, const SpectrumMarks& marks) const;
    void paintGrid(QPainter& painter, const SpectrumGrid& grid);
    void paintLabel(QPainter& painter, const GridLabel& label);

    QSize size_;
    SpectrumDisplay display_;
    SpectrumGeometry geometry_;
    SpectrumTrace trace_;
    std::array<std::vector<PlotPoint>, kSpectrumOverlays> overlayLines_;
    CachedTexts texts_; ///< of the grid
    CachedTexts legendTexts_;
};

/// The whole of a face of so many points.
PlotRect spectrumBounds(const QSize& size);

} // namespace sonotrace
