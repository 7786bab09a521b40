#include "widgets/NumberField.h"

#include "base/Numbers.h"
#include "widgets/NumberText.h"

namespace sonotrace {

NumberField::NumberField(QWidget* parent) : QLineEdit(parent) {
    setMaxLength(400); // the longest double in plain notation is shorter; a pasted book is not a number
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

double NumberField::doubleValue() const {
    return numberFromText(text());
}

std::int32_t NumberField::integerValue() const {
    return truncateToInt32(doubleValue());
}

void NumberField::setDoubleValue(double value) {
    setText(textFromNumber(value));
}

void NumberField::setFloatValue(float value) {
    setText(textFromNumber(value));
}

} // namespace sonotrace
