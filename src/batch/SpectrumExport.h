#pragma once

#include "batch/SpectrumMeasurement.h"
#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumGeometry.h"
#include "spectrum/SpectrumOverlays.h"
#include "widgets/ReportPicture.h"

#include <string>

namespace sonotrace {

/// Table and page of a sound file's spectrum: the last whole one, which is the window's own, and beside it
/// the mean power and the highest of all, which have to have been collected. Window thread.
class SpectrumExport {
public:
    /// `measurement` outlives it.
    SpectrumExport(const SpectrumMeasurement& measurement, bool isLogarithmic);

    std::string table() const;
    ReportPicture page(); ///< not to be used longer than this

private:
    const SpectrumMeasurement& measurement_;
    SpectrumDisplay display_;
    SpectrumAnalysis analysis_;
    SpectrumOverlays overlays_;
    std::vector<Setting> settings_;
};

} // namespace sonotrace
