#include "base/CsvText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace sonotrace {

void CsvText::comment(std::string_view name, std::string_view value) {
    text_ += "# ";
    for (const std::string_view part : {name, std::string_view(": "), value})
        for (const char character : part)
            text_ += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
    text_ += '\n';
}

void CsvText::comments(std::span<const Setting> settings) {
    for (const Setting& setting : settings)
        comment(setting.name, setting.value);
}

void CsvText::columns(std::span<const std::string> names) {
    for (const std::string& name : names) {
        if (std::exchange(isInRow_, true))
            text_ += ',';
        text_ += name;
    }
    endRow();
}

void CsvText::value(double number, int decimals) {
    if (std::exchange(isInRow_, true))
        text_ += ',';
    if (!std::isfinite(number))
        return;
    std::array<char, 330> digits; // of the largest number, its sign, point and decimals
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                            std::chars_format::fixed, decimals);
    if (error != std::errc())
        return;
    const std::string_view written(digits.data(), end);
    const bool isZero = written.find_first_not_of("-0.") == std::string_view::npos;
    text_ += written.substr(isZero && written.starts_with('-') ? 1 : 0);
}

void CsvText::endRow() {
    text_ += '\n';
    isInRow_ = false;
}

} // namespace sonotrace
