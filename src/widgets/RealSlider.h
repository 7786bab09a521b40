#pragma once

#include <QSlider>

#include <optional>

namespace sonotrace {

/// A slider for a real value. Values set by the program are kept exactly (pinned to the limits), not rounded
/// to the slider's positions; only moves of the handle are, to a thousandth of the range each. An arrow key
/// is ten of them, a page key a hundred, an arrow with Ctrl a single one.
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

    /// The same for a value that the user has given in another way than with the handle.
    void enterValue(double value);

    /// The Delete key, and a double click on the slider's name if there is one, enter this value.
    void setFirstValue(double value, QWidget* name = nullptr);

Q_SIGNALS:
    /// The user wants to type the value.
    void typingAsked();
    /// The user has moved the slider.
    void valueEdited();
    /// The value has changed, by the user or by the program.
    void doubleValueChanged(double value);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showValue();

    double minimum_ = 0.0;
    double maximum_ = 1.0;
    double value_ = 0.0;
    std::optional<double> firstValue_;
    bool showing_ = false; ///< the handle is being set from the value, not by the user
};

} // namespace sonotrace
