#pragma once

#include "base/AxisTicks.h"

#include <QColor>
#include <QWidget>

#include <vector>

namespace sonotrace {

/// A place on a ruler that is pointed at.
struct RulerMark {
    double value = 0; ///< on the ruler's axis; one off the axis is not shown
    QString text;     ///< short, may be empty
    QColor colour;
    bool operator==(const RulerMark&) const = default;
};

/// A scale beside a picture: as long as the view it stands at, with its ticks where the view has the values.
/// Window thread.
class Ruler : public QWidget {
    Q_OBJECT

public:
    enum class Side { Left, Bottom, Right }; ///< of the view

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
    bool isUpright() const { return side_ != Side::Bottom; }
    double length() const { return isUpright() ? height() : width(); }
    double axisLength() const { return length() - before_ - behind_; }
    void describe();
    void paintTick(QPainter& painter, const AxisTick& tick) const;
    void paintMark(QPainter& painter, const RulerMark& mark) const;
    void paintText(QPainter& painter, double along, const QString& text, double depth) const;

    const Side side_;
    const QString title_;
    QString unit_;
    Axis axis_{0, 0};
    double before_ = 0;
    double behind_ = 0;
    std::vector<RulerMark> marks_;
};

} // namespace sonotrace
