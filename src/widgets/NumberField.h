#pragma once

#include <QLineEdit>

namespace sonotrace {

/// A text field for a number, which takes any text: the value is the number the text begins with, else 0.
class NumberField : public QLineEdit {
    Q_OBJECT

public:
    explicit NumberField(QWidget* parent = nullptr);

    double doubleValue() const;
    std::int32_t integerValue() const; ///< truncated

    /// Shows a value in the shortest text that reads back as the same number.
    void setDoubleValue(double value);
    void setFloatValue(float value);
};

} // namespace sonotrace
