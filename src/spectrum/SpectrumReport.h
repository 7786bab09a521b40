#pragma once

#include "spectrum/SpectrumPainter.h"
#include "widgets/ReportPicture.h"

namespace sonotrace {

/// What the plot of a page shows.
struct SpectrumShown {
    PaintedSpectrum spectrum;
    SpectrumDisplay display;
    SpectrumOverlays* overlays = nullptr; ///< may be null
    SpectrumMarks marks = {};
};

/// The page of a spectrum; its title is set. What is shown has to outlive it. Window thread.
ReportPicture spectrumReport(ReportContent content, const SpectrumShown& shown);

} // namespace sonotrace
