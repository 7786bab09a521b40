#include "waterfall/WaterfallTable.h"

#include "base/CsvText.h"
#include "base/SampleRate.h"
#include "waterfall/WaterfallParameters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace sonotrace {

namespace {

constexpr int kTimeDecimals = 6;

std::string numberText(double value, int decimals) {
    CsvText text;
    text.value(value, decimals);
    return text.text();
}

/// As many as tell neighbouring rows apart.
int frequencyDecimals(const WaterfallLines& lines) {
    const double perRow = std::abs(lines.frequencyHz(1) - lines.frequencyHz(0));
    return perRow > 0.0 ? static_cast<int>(std::clamp(2.0 - std::floor(std::log10(perRow)), 2.0, 12.0)) : 2;
}

template <std::size_t kCount>
std::string titleOf(const std::array<const char*, kCount>& titles, std::int32_t index) {
    return titles[index >= 0 && index < static_cast<std::int32_t>(kCount) ? static_cast<std::size_t>(index)
                                                                          : 0];
}

} // namespace

std::vector<Setting> waterfallSettings(const ColumnScale& scale) {
    const ColumnSource& source = scale.source;
    const RowBins::Scale& rows = scale.rows;
    std::vector<Setting> settings = {
        {"FFT size", std::to_string(rows.len)},
        {"Window", titleOf(kFftWindowTitles, source.window)},
        {"Channel", titleOf(kChannelFoldTitles, static_cast<int>(source.channel))},
        {"From", numberText(rows.startFreq, 3) + " Hz"},
        {"To", numberText(rows.endFreq, 3) + " Hz"},
        {"Speed-up", std::to_string(source.speedup)},
        {"Column", numberText(source.samples / kSampleRate, kTimeDecimals) + " s"}};
    if (source.merge >= 0)
        settings.push_back({"Merged by", titleOf(kLineMergeTitles, source.merge)});
    return settings;
}

std::string waterfallTable(const WaterfallLines& lines, std::span<const Setting> about) {
    CsvText table;
    table.comments(about);
    if (!lines.columns.empty())
        table.comments(waterfallSettings(lines.scale));
    table.comment("Levels",
                  "dB of the display's own scale, 6.25 times the natural logarithm of the magnitude");
    table.comment(
        "Columns",
        "time before the newest line, then the middle of each row of the picture in Hz; a row begins at "
        "the bin of that frequency, so that a tone reads up to one bin higher");
    if (!lines.columns.empty() && lines.columns.front() < lines.gapEnd)
        table.comment("Gap", "sound is missing: the lines before it have no time");
    if (lines.leftOut > 0)
        table.comment("Left out", std::to_string(lines.leftOut) + " older lines painted with other settings");
    std::vector<std::string> names = {"time_s"};
    const int decimals = frequencyDecimals(lines);
    for (std::size_t row = 0; row < lines.rows; ++row)
        names.push_back(numberText(lines.frequencyHz(row), decimals));
    table.columns(names);
    table.reserve(lines.hundredths.size() * std::size_t{6} + lines.columns.size() * std::size_t{16});
    for (std::size_t i = 0; i < lines.columns.size(); ++i) {
        table.value(lines.seconds(i), kTimeDecimals);
        for (const std::uint16_t level : lines.line(i))
            table.value(level / 100.0, 2);
        table.endRow();
    }
    return table.text();
}

} // namespace sonotrace
