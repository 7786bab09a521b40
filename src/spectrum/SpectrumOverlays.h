#pragma once

#include "base/PlotShapes.h"
#include "measure/PowerAverage.h"
#include "spectrum/SpectrumBins.h"
#include "spectrum/SpectrumGeometry.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace sonotrace {

/// Further traces over the stated one, in the order they are painted and listed in.
enum class SpectrumOverlay : std::uint8_t { Average, PeakHold, Reference, Difference, Corrected };
inline constexpr std::size_t kSpectrumOverlays = 5;

/// What the further traces are made of. Each spectrum is added; the traces are computed when they are
/// painted. They are of bins and so follow the range that is shown. Average and peak hold begin anew with a
/// spectrum of another kind; a reference keeps its own size. Window thread.
class SpectrumOverlays {
public:
    /// Whether a trace is asked for. What is not asked for is not collected; the reference is only hidden.
    void ask(SpectrumOverlay overlay, bool asked);
    bool isAsked(SpectrumOverlay overlay) const { return asked_[index(overlay)]; }
    void setAverage(AverageKind kind, std::int32_t spectra); ///< also asks for it, unless it is off

    /// Response in dB of the microphone at a frequency in Hz, which "corrected" takes off. Empty: none.
    void setResponse(std::function<double(double)> responseDb) { responseDb_ = std::move(responseDb); }

    /// Takes a spectrum.
    void add(const SpectrumBins& spectrum);

    /// Takes a mean and the highest powers that were collected elsewhere, of spectra like the last one, for
    /// average and peak hold, and asks for both.
    void take(std::span<const double> mean, std::span<const double> highest);

    /// Drops average and peak hold: what comes next is of another kind. Whether there was anything.
    bool clear();
    void resetPeakHold() { hold_.clear(); }

    /// Keeps the average, or without one the last spectrum, as the reference. False without either.
    bool storeReference();
    bool hasReference() const { return !reference_.empty(); }

    PowerAverage& average() { return average_; }
    const PowerAverage& average() const { return average_; }

    /// What a trace is made of, empty when it is not asked for or there is nothing to show. Difference and
    /// correction are made of the average, or without one of the last spectrum. Valid until the next call.
    SpectrumBins bins(SpectrumOverlay overlay);
    SpectrumBins reference() const { return {reference_, referenceFftSize_, referenceWindowSum_}; }
    const std::function<double(double)>& response() const { return responseDb_; }

    /// The line of a trace in a view of these bounds, a corner per column up to 22050 Hz; empty when there is
    /// nothing to show. The difference lies around the line of -50 dB.
    void build(SpectrumOverlay overlay, const PlotRect& bounds, const SpectrumDisplay& display,
               std::vector<PlotPoint>& line);

private:
    static std::size_t index(SpectrumOverlay overlay) { return static_cast<std::size_t>(overlay); }
    SpectrumBins current();
    /// Natural logarithms of the columns' power, as the plot scales it.
    void columnLevels(const SpectrumBins& trace, const PlotRect& bounds, const SpectrumDisplay& display,
                      std::vector<double>& levels);

    std::array<bool, kSpectrumOverlays> asked_{};
    PowerAverage average_;
    PeakHold hold_;
    std::function<double(double)> responseDb_;
    std::vector<double> last_;
    double fftSize_ = 0; ///< of all but the reference
    double windowSum_ = 0;
    std::vector<double> reference_;
    double referenceFftSize_ = 0;
    double referenceWindowSum_ = 0;
    std::vector<double> levels_; ///< work
    std::vector<double> referenceLevels_;
};

} // namespace sonotrace
