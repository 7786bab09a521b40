#include "spectrum/SpectrumTable.h"

#include "base/CsvText.h"
#include "base/PlainNumber.h"
#include "base/SampleRate.h"
#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumOverlays.h"

#include <cmath>
#include <limits>
#include <vector>

namespace sonotrace {

namespace {

constexpr int kFrequencyDecimals = 6;
constexpr int kLevelDecimals = 4;
constexpr std::size_t kRowLength = 60; // characters, about
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// Of the bin that has exactly the frequency of a bin of the spectrum; not a number where there is none.
double levelAt(const SpectrumBins& bins, std::size_t bin, const SpectrumBins& spectrum) {
    const double same = static_cast<double>(bin) * bins.fftSize / spectrum.fftSize;
    const auto index = static_cast<std::size_t>(same);
    return same == std::floor(same) && index < bins.power.size() ? bins.levelDbfs(index) : kNone;
}

struct Column {
    std::string name;
    std::function<double(std::size_t bin, double frequencyHz)> level;
};

std::vector<Column> columnsOf(const SpectrumTraces& traces) {
    std::vector<Column> columns;
    const auto add = [&](const char* name, const SpectrumBins& bins) {
        if (!bins.isEmpty())
            columns.push_back(
                {name, [&](std::size_t bin, double) { return levelAt(bins, bin, traces.spectrum); }});
    };
    add("level_dbfs", traces.spectrum);
    add("power_average_dbfs", traces.average);
    add("peak_hold_dbfs", traces.peakHold);
    add("reference_dbfs", traces.reference);
    if (!traces.compared.isEmpty() && !traces.subtracted.isEmpty())
        columns.push_back({"difference_db", [&](std::size_t bin, double) {
                               return levelAt(traces.compared, bin, traces.spectrum) -
                                      levelAt(traces.subtracted, bin, traces.spectrum);
                           }});
    if (!traces.corrected.isEmpty() && traces.responseDb)
        columns.push_back({"corrected_dbfs", [&](std::size_t bin, double frequencyHz) {
                               return levelAt(traces.corrected, bin, traces.spectrum) -
                                      traces.responseDb(frequencyHz);
                           }});
    return columns;
}

} // namespace

SpectrumTraces shownTraces(const SpectrumAnalysis& analysis, SpectrumOverlays& overlays) {
    using enum SpectrumOverlay;
    return {.spectrum = analysis.bins(),
            .average = overlays.bins(Average),
            .peakHold = overlays.bins(PeakHold),
            .reference = overlays.bins(Reference),
            .compared = overlays.bins(Difference),
            .subtracted = overlays.reference(),
            .corrected = overlays.bins(Corrected),
            .responseDb = overlays.response()};
}

std::string spectrumTable(const MeasurementOrigin& origin, std::span<const Setting> settings,
                          const SpectrumTraces& traces, double fromHz, double toHz) {
    CsvText csv;
    csv.comments(originLines("spectrum", origin));
    csv.comments(settings);
    csv.comment("Levels", "0 dBFS is the power of a sine with a peak of 32768 in the middle of its bin");
    if (!traces.reference.isEmpty() || !traces.compared.isEmpty())
        csv.comment("Reference", plainNumber(traces.subtracted.fftSize) + " points");
    const std::vector<Column> columns = columnsOf(traces);
    std::vector<std::string> names{"frequency_hz"};
    for (const Column& column : columns)
        names.push_back(column.name);
    csv.columns(names);
    csv.reserve(traces.spectrum.power.size() * kRowLength);
    for (std::size_t bin = 0; bin < traces.spectrum.power.size(); ++bin) {
        const double frequency = static_cast<double>(bin) * kSampleRate / traces.spectrum.fftSize;
        if (!(frequency >= fromHz && frequency <= toHz))
            continue;
        csv.value(frequency, kFrequencyDecimals);
        for (const Column& column : columns)
            csv.value(column.level(bin, frequency), kLevelDecimals);
        csv.endRow();
    }
    return csv.text();
}

} // namespace sonotrace
