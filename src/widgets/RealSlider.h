#pragma once

#include <QSlider>

namespace sonotrace {

/// A slider for a real value. Values set by the program are kept exactly (pinned to the limits), not rounded
/// to the slider's steps; only the user moves in steps, a thousandth of the range each.
class RealSlider : public QSlider {
    Q_OBJECT
    Q_PROPERTY(double minimumValue READ minimumValue WRITE setMinimumValue)
    Q_PROPERTY(double maximumValue READ maximumValue WRITE setMaximumValue)

public:
    explicit RealSlider(QWidget* parent = nullptr);
    explicit RealSlider(Qt::Orientation orientation, QWidget* parent = nullptr);

    double minimumValue() const { return minimum_; }
    double maximumValue() const { return maximum_; }
    void setMinimumValue(double minimum);
    void setMaximumValue(double maximum);

    double doubleValue() const { return value_; }
    std::int32_t integerValue() const; ///< truncated

    /// Sets the value, pinned to the limits; NaN gives the minimum. Does not emit valueEdited().
    void setDoubleValue(double value);

Q_SIGNALS:
    /// The user has moved the slider.
    void valueEdited();
    /// The value has changed, by the user or by the program.
    void doubleValueChanged(double value);

private:
    void showValue();

    double minimum_ = 0.0;
    double maximum_ = 1.0;
    double value_ = 0.0;
    bool showing_ = false; ///< the handle is being set from the value, not by the user
};

} // namespace sonotrace
