#pragma once

#include <QLineEdit>

namespace sonotrace {

/// A text field for a number, which takes any text: the value is the number the text begins with, else 0.
/// Enter, and leaving the field, rewrite "1k" as 1000. The Up and Down keys go to the next number of two
/// digits, whole from 10 down; with Shift, and with the page keys, to the next of one digit.
class NumberField : public QLineEdit {
    Q_OBJECT

public:
    explicit NumberField(QWidget* parent = nullptr);

    double doubleValue() const;
    std::int32_t integerValue() const; ///< truncated

    /// Shows a value in the shortest text that reads back as the same number.
    void setDoubleValue(double value);
    void setFloatValue(float value);

    /// Shows one as if it were typed; what is not finite is not shown.
    void typeValue(double value);

    /// How far the keys step; what is typed has no limits. 0 and no upper limit at first.
    void setStepLimits(double least, double most);

    enum class Look { Usual, Refused, Unused };
    /// Looks as if the text were not what is taken, or nothing that is used, and says so before its usual
    /// tip.
    void setLook(Look look, const QString& note = {});

    QSize minimumSizeHint() const override; ///< five digits

protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override; ///< the field's actions as well
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showLook();
    void writeOutThousands();

    double leastStep_ = 0.0;
    double mostStep_;
    Look look_ = Look::Usual;
    QString usualTip_;
};

} // namespace sonotrace
