#include "widgets/NumberText.h"

#include <QRegularExpression>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace sonotrace {

namespace {

constexpr double kPlainLimit = 1e15; // beyond it, and below its inverse, plain notation is mostly zeros

template <typename Number>
QString shortest(Number value) {
    char text[64];
    const double magnitude = std::abs(static_cast<double>(value));
    const bool plain = magnitude == 0.0 || (magnitude < kPlainLimit && magnitude > 1.0 / kPlainLimit);
    const auto format = plain ? std::chars_format::fixed : std::chars_format::general;
    const auto [end, error] = std::to_chars(text, text + sizeof text, value, format);
    return QString::fromLatin1(text, end - text);
}

bool beginsNumber(std::string_view text) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.empty())
        return false;
    return isDigit(text[0]) || (text[0] == '.' && text.size() > 1 && isDigit(text[1]));
}

/// Whether a number that no double can hold is tiny rather than huge: its exponent says so, or, without one,
/// that it has no digit but 0 before the point.
bool isTiny(std::string_view number) {
    const std::size_t exponent = number.find_first_of("eE");
    if (exponent != std::string_view::npos)
        return number[exponent + 1] == '-';
    return number.find_first_not_of('0') == number.find('.');
}

} // namespace

double numberFromText(const QString& text) {
    const std::string bytes = text.trimmed().toStdString();
    std::string_view number = bytes;
    double sign = 1.0;
    if (!number.empty() && (number[0] == '+' || number[0] == '-')) {
        sign = number[0] == '-' ? -1.0 : 1.0;
        number.remove_prefix(1);
    }
    if (!beginsNumber(number)) // from_chars would also take words such as "nan"
        return 0.0;
    double value = 0.0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range) {
        const auto length = static_cast<std::size_t>(end - number.data());
        value = isTiny(number.substr(0, length)) ? 0.0 : std::numeric_limits<double>::infinity();
    }
    return sign * value;
}

std::optional<NumberAndUnit> numberAndUnit(const QString& text) {
    static const QRegularExpression form(
        R"(^([+-]?(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?)\s*((?:[^\s\d.,]+(?: [^\s\d.,]+)?)?)$)");
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    return NumberAndUnit{numberFromText(match.captured(1)), match.captured(2).toLower()};
}

std::optional<double> thousandsFromText(const QString& text) {
    static const QRegularExpression form(R"(^([+-]?(?:\d+\.?\d*|\.\d+))\s*k(?:hz)?$)",
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    return numberFromText(match.captured(1) + "e3"); // exact, which a product is not
}

QString textFromNumber(double value) {
    return shortest(value);
}

QString textFromNumber(float value) {
    return shortest(value);
}

QString textWithDecimals(double value, int decimals) {
    QString text = QString::number(value, 'f', decimals);
    if (text.startsWith('-') && text.count('0') + text.count('.') == text.size() - 1)
        text.remove(0, 1);
    return text;
}

} // namespace sonotrace
