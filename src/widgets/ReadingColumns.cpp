#include "widgets/ReadingColumns.h"

#include <algorithm>

namespace sonotrace {

namespace {
constexpr int kNameGap = 8;     // points, from a name to its value
constexpr int kColumnGap = 24;  // and from there to the next name
constexpr int kMostColumns = 8; // more are not read as columns
} // namespace

ReadingColumns::ReadingColumns(const std::vector<Reading>& readings, const QFontMetrics& metrics, int width,
                               int group) {
    std::vector<std::pair<int, int>> widths;
    widths.reserve(readings.size());
    for (const Reading& reading : readings)
        widths.emplace_back(metrics.horizontalAdvance(reading.name),
                            metrics.horizontalAdvance(reading.value));
    const int count = static_cast<int>(readings.size());
    int columns = std::min(kMostColumns, std::max(count, 1));
    const auto isWhole = [&] { return columns < group || columns % group == 0; };
    while (columns > 1 && !(isWhole() && tryColumns(widths, columns, width)))
        --columns;
    if (columns == 1)
        tryColumns(widths, 1, width);
    rows_ = (count + columns - 1) / columns;
}

/// Whether they fit. What is left over is shared out among them.
bool ReadingColumns::tryColumns(const std::vector<std::pair<int, int>>& widths, int columns, int width) {
    places_.assign(static_cast<std::size_t>(columns), {});
    int needed = kColumnGap * (columns - 1);
    for (std::size_t column = 0; column < places_.size(); ++column) {
        int name = 0;
        int value = 0;
        for (std::size_t i = column; i < widths.size(); i += places_.size()) {
            name = std::max(name, widths[i].first);
            value = std::max(value, widths[i].second);
        }
        places_[column] = {0, name + kNameGap, name + kNameGap + value};
        needed += places_[column].end;
    }
    const int spare = std::max(0, width - needed) / columns;
    int left = 0;
    for (Place& place : places_) {
        const int extent = place.end;
        place = {left, left + place.value, columns == 1 ? width : left + extent + spare};
        left += extent + spare + kColumnGap;
    }
    return needed <= width;
}

} // namespace sonotrace
