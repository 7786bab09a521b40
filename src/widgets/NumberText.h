#pragma once

#include <QString>

#include <optional>

namespace sonotrace {

/// The number a text begins with, in the program's own notation ("1000", " -5.5", "1e3 Hz"): blanks first,
/// then an optional sign, digits with an optional point, an optional exponent. Text that does not begin with
/// a number, "nan" and "inf" included, is 0; a number too large for a double is infinite.
double numberFromText(const QString& text);

/// A text that is a number and nothing else but a unit after it.
struct NumberAndUnit {
    double number;
    QString unit; ///< one word or two, or empty; in small letters
};

/// Nothing when the text is something else.
std::optional<NumberAndUnit> numberAndUnit(const QString& text);

/// What "1k" and "22 kHz" mean, 1000 and 22000; nothing for every other text.
std::optional<double> thousandsFromText(const QString& text);

/// The shortest text that reads back as the same number.
QString textFromNumber(double value);
QString textFromNumber(float value);

/// With so many digits after the point; what they round to 0 has no sign.
QString textWithDecimals(double value, int decimals);

} // namespace sonotrace
