#pragma once

#include "widgets/RulerPainter.h"

#include <QFont>
#include <QSize>

#include <vector>

class QPainter;

namespace sonotrace {

/// An instrument's face as a part of a page: painted by what paints it on the screen.
class ReportPlot {
public:
    virtual ~ReportPlot() = default;

    /// The smallest face, in points, of which nothing is cut.
    virtual QSize least() const = 0;

    /// Where it has rulers.
    virtual std::vector<RulerSide> sides() const = 0;

    /// Computes a face of so many points, and the rulers beside it.
    virtual std::vector<RulerScale> build(const QSize& size) = 0;

    /// Paints what was built from the painter's origin, which is clipped to it. A text on it is in `font`.
    virtual void paint(QPainter& painter, const QFont& font) = 0;

    /// A strip between the face and its right ruler, such as a bar of colours, as high as the face. In
    /// points.
    virtual int stripWidth() const { return 0; }
    virtual void paintStrip(QPainter&, const QSize&) {}
};

} // namespace sonotrace
