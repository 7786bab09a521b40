#pragma once

#include "base/MeasurementOrigin.h"
#include "base/Setting.h"
#include "spectrum/SpectrumBins.h"

#include <functional>
#include <span>
#include <string>

namespace sonotrace {

class SpectrumAnalysis;
class SpectrumOverlays;

/// What a table of a spectrum holds: the spectrum, and what is not empty of the rest.
struct SpectrumTraces {
    SpectrumBins spectrum;
    SpectrumBins average = {};
    SpectrumBins peakHold = {};
    SpectrumBins reference = {}; ///< may be of another size; then bins of the same frequencies are listed
    SpectrumBins compared = {};  ///< with `subtracted`: the difference
    SpectrumBins subtracted = {};
    SpectrumBins corrected = {};                               ///< for the microphone,
    std::function<double(double frequencyHz)> responseDb = {}; ///< whose response this is
};

/// What the window shows, as long as nothing is added to it.
SpectrumTraces shownTraces(const SpectrumAnalysis& analysis, SpectrumOverlays& overlays);

/// The bins from `fromHz` to `toHz`, both included, as a table: frequency and level of each, and a column for
/// each other trace. A bin without power has an empty cell. The same bytes in every locale.
std::string spectrumTable(const MeasurementOrigin& origin, std::span<const Setting> settings,
                          const SpectrumTraces& traces, double fromHz, double toHz);

} // namespace sonotrace
