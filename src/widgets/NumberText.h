#pragma once

#include <QString>

namespace sonotrace {

/// The number a text begins with, in the program's own notation ("1000", " -5.5", "1e3 Hz"): blanks first,
/// then an optional sign, digits with an optional point, an optional exponent. Text that does not begin with
/// a number, "nan" and "inf" included, is 0; a number too large for a double is infinite.
double numberFromText(const QString& text);

/// The shortest text that reads back as the same number.
QString textFromNumber(double value);
QString textFromNumber(float value);

} // namespace sonotrace
