#pragma once

#include "base/PlotShapes.h"
#include "spectrum/SpectrumGeometry.h"

#include <span>
#include <vector>

namespace sonotrace {

/// Power of each of the plot's columns, with the bins that neighbours share. `power` is read up to `fftSize`
/// bins; columns at that and above have a power of 1.
void columnPowers(const SpectrumGeometry& geometry, const SpectrumDisplay& display,
                  std::span<const double> power, double fftSize, std::vector<double>& powers);

/// The green trace of the spectrum, a column per point of the plot's width. Kept from redraw to redraw, so
/// that only a wider view allocates. Window thread.
class SpectrumTrace {
public:
    static constexpr double kLineWidth = 0.5;

    /// Computes the trace of `powerSpectrum`, whose bins are read up to `fftSize`. No spectrum, no trace.
    void build(const SpectrumGeometry& geometry, const SpectrumDisplay& display,
               std::span<const double> powerSpectrum, double fftSize);

    /// The trace as a line: its start, then a corner per column (the first of them is the start once more).
    /// Empty in fill mode.
    std::span<const PlotPoint> line() const { return line_; }

    /// The trace as bars, one a column. Empty unless in fill mode.
    std::span<const PlotRect> bars() const { return bars_; }

private:
    std::vector<double> powers_;
    std::vector<PlotPoint> line_;
    std::vector<PlotRect> bars_;
};

} // namespace sonotrace
