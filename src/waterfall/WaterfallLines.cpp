#include "waterfall/WaterfallLines.h"

#include "base/Numbers.h"
#include "base/SampleRate.h"

#include <cmath>
#include <limits>

namespace sonotrace {

double WaterfallLines::frequencyHz(std::size_t row) const {
    const double perRow =
        (scale.rows.endFreq - scale.rows.startFreq) / static_cast<double>(scale.rows.height);
    return scale.rows.startFreq + (static_cast<double>(row) + 0.5) * perRow;
}

double WaterfallLines::secondsPerLine() const {
    return scale.source.samples / kSampleRate;
}

double WaterfallLines::seconds(std::size_t i) const {
    if (columns[i] < gapEnd)
        return std::numeric_limits<double>::quiet_NaN();
    return static_cast<double>(columns[i] - columns.back()) * secondsPerLine();
}

WaterfallLines linesInView(const WaterfallImage& image) {
    WaterfallLines lines;
    const KeptColumns& kept = image.keptColumns();
    const auto newest = kept.newestScale();
    if (!newest)
        return lines;
    lines.scale = newest->scale;
    lines.rows = RowBins::rowsOf(newest->scale.rows.height);
    lines.gapEnd = image.gapEnd();
    const ColumnNumber scrolled = image.scrolled();
    const ColumnNumber end = scrolled + truncateToInt32(std::ceil(static_cast<double>(image.bounds().width)));
    lines.hundredths.reserve(static_cast<std::size_t>(end - scrolled) * lines.rows);
    for (ColumnNumber column = scrolled; column < end; ++column) {
        lines.hundredths.resize((lines.columns.size() + 1) * lines.rows);
        if (kept.copyRows(column, newest->number, std::span(lines.hundredths).last(lines.rows)))
            lines.columns.push_back(column);
        else if (kept.levels(column))
            ++lines.leftOut;
    }
    lines.hundredths.resize(lines.columns.size() * lines.rows);
    return lines;
}

} // namespace sonotrace
