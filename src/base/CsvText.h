#pragma once

#include "base/Setting.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace sonotrace {

/// A table for other programs: lines of comment, a line of column names, rows of numbers. Numbers have a
/// point in every locale; a comma stands between cells, a line feed behind each row.
class CsvText {
public:
    /// A line "# name: value". Whatever would end the line or the comment's column is a blank.
    void comment(std::string_view name, std::string_view value);
    void comments(std::span<const Setting> settings);

    /// Names without commas, quotes or line breaks.
    void columns(std::span<const std::string> names);

    /// A cell with `decimals` (0 to 17) digits behind the point, empty where the number is not finite.
    /// What is rounded to 0 has no sign.
    void value(double number, int decimals);
    void endRow();

    /// Room for so many characters more.
    void reserve(std::size_t characters) { text_.reserve(text_.size() + characters); }

    const std::string& text() const { return text_; }

private:
    std::string text_;
    bool isInRow_ = false;
};

} // namespace sonotrace
