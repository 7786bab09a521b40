#pragma once

#include "widgets/Reading.h"

#include <QFontMetrics>

#include <utility>
#include <vector>

namespace sonotrace {

/// Names and values side by side in as many columns as there is room for, each as wide as its own texts need.
class ReadingColumns {
public:
    /// Lays readings out in `width` points. Columns are a multiple of `group` where so many fit.
    ReadingColumns(const std::vector<Reading>& readings, const QFontMetrics& metrics, int width, int group);

    int columns() const { return static_cast<int>(places_.size()); }
    int rows() const { return rows_; }

    /// Where the name and the value of a column begin, in points from the left.
    struct Place {
        int name = 0;
        int value = 0;
        int end = 0;
    };
    const Place& place(int column) const { return places_[static_cast<std::size_t>(column)]; }

private:
    bool tryColumns(const std::vector<std::pair<int, int>>& widths, int columns, int width);

    std::vector<Place> places_;
    int rows_ = 0;
};

} // namespace sonotrace
