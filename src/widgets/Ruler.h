#pragma once

#include "widgets/RulerPainter.h"

#include <QWidget>

#include <vector>

namespace sonotrace {

/// A scale beside a picture: as long as the view it stands at, with its ticks where the view has the values.
/// Window thread.
class Ruler : public QWidget {
    Q_OBJECT

public:
    using Side = RulerSide;

    /// `title` says what is measured ("Frequency"); `unit` stands behind the numbers, at the axis' far end.
    Ruler(Side side, const QString& title, const QString& unit, QWidget* parent = nullptr);

    /// The values at the left and the right end, or at the lower and the upper one. An axis that cannot be
    /// drawn leaves the ruler empty.
    void setAxis(const Axis& axis);
    void setUnit(const QString& unit);

    /// Where the axis' ends lie, in points from the ruler's left or lower end, for views whose picture has
    /// margins: `before` the axis and `behind` it there is nothing.
    void setMargins(double before, double behind);

    /// Points out places, a triangle at the picture's side with its text.
    void setMarks(std::vector<RulerMark> marks);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void describe();

    const QString title_;
    RulerScale scale_;
};

} // namespace sonotrace
