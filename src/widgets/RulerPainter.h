#pragma once

#include "base/AxisTicks.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QSizeF>
#include <QString>

#include <vector>

class QPainter;

namespace sonotrace {

enum class RulerSide { Left, Bottom, Right }; ///< of the picture

/// A place on a ruler that is pointed at.
struct RulerMark {
    double value = 0; ///< on the ruler's axis; one off the axis is not shown
    QString text;     ///< short, may be empty
    QColor colour;
    bool operator==(const RulerMark&) const = default;
};

/// What a ruler shows.
struct RulerScale {
    RulerSide side = RulerSide::Bottom;
    QString unit;      ///< stands behind the numbers, at the axis' far end
    Axis axis{0, 0};   ///< from the left to the right end, or from the lower to the upper one
    double before = 0; ///< points from the ruler's left or lower end to the axis
    double behind = 0; ///< and from the axis to the other end
    std::vector<RulerMark> marks = {};

    bool isUpright() const { return side != RulerSide::Bottom; }
};

/// How a ruler looks.
struct RulerLook {
    QFont font;
    QColor ink;
    QBrush ground; ///< behind the texts of marks
};

/// How far a ruler reaches away from the picture, in points.
double rulerDepth(RulerSide side, const QFont& font);

/// Paints a ruler from the painter's origin, on the screen and on paper. An axis that cannot be drawn leaves
/// it empty. For one painting; all arguments outlive it.
class RulerPainter {
public:
    RulerPainter(QPainter& painter, const RulerScale& scale, const QSizeF& size, const RulerLook& look)
        : painter_(painter), scale_(scale), size_(size), look_(look) {}

    void paint();

private:
    double length() const { return scale_.isUpright() ? size_.height() : size_.width(); }
    double axisLength() const { return length() - scale_.before - scale_.behind; }
    void paintTick(const AxisTick& tick) const;
    void paintMark(const RulerMark& mark) const;
    void paintText(double along, const QString& text, double depth) const;

    QPainter& painter_;
    const RulerScale& scale_;
    const QSizeF size_;
    const RulerLook look_;
};

} // namespace sonotrace
