#include "batch/SpectrumExport.h"

#include "batch/Exports.h"
#include "spectrum/SpectrumAxes.h"
#include "spectrum/SpectrumReport.h"
#include "spectrum/SpectrumSettings.h"
#include "spectrum/SpectrumTable.h"
#include "spectrum/SpectrumWording.h"
#include "widgets/LevelText.h"
#include "widgets/NumberText.h"

#include <algorithm>

namespace sonotrace {

SpectrumExport::SpectrumExport(const SpectrumMeasurement& measurement, bool isLogarithmic)
    : measurement_(measurement),
      display_{.spectrumStartFreq = measurement.question.fromHz,
               .spectrumEndFreq = measurement.question.toHz,
               .logMode = isLogarithmic ? 1 : 0,
               .gridMode = 1,
               .gridBrightness = 1.0F},
      analysis_([] {}) {
    const FileSpectra& spectra = measurement.spectra;
    const FileSpectraSettings& settings = spectra.settings();
    analysis_.takeSum(spectra.blockSum(), spectra.windowCoeffs(), settings.blocks);
    overlays_.add(analysis_.bins());
    overlays_.take(spectra.meanPower(), spectra.peakHold());
    settings_ = worded({.fftSize = static_cast<double>(settings.fftSize),
                        .window = settings.windowType,
                        .fold = settings.fold,
                        .blocks = settings.blocks,
                        .display = display_,
                        .fundamentalHz = measurement.question.fundamentalHz,
                        .mainsHz = measurement.question.mainsHz});
    std::ranges::find(settings_, "Power average", &Setting::name)->value =
        "all " + std::to_string(spectra.spectra()) + " spectra, as the peak hold";
    settings_.push_back({"Level and readings",
                         "of the last spectrum, from " +
                             textWithDecimals(measurement.lastSpectrumAt(), 3).toStdString() + " s on"});
}

std::string SpectrumExport::table() const {
    const FileSpectra& spectra = measurement_.spectra;
    const SpectrumBins last = analysis_.bins();
    const Axis shown = frequencyAxis(display_);
    return spectrumTable(originOf(measurement_.file.described()), settings_,
                         {.spectrum = last,
                          .average = {spectra.meanPower(), last.fftSize, last.windowSum},
                          .peakHold = {spectra.peakHold(), last.fftSize, last.windowSum}},
                         shown.from, shown.to);
}

ReportPicture SpectrumExport::page() {
    const auto level = [](double levelDbfs) { return levelText({}, levelDbfs); };
    const ReportContent content{.title = {},
                                .origin = originOf(measurement_.file.described()),
                                .settings = settings_,
                                .readings = wordedSpectrum(measurement_.readings, measurement_.question, true,
                                                           level, measurement_.isAveraged)};
    return spectrumReport(content, {.spectrum = {analysis_.powerSpectrum(), analysis_.fftSize()},
                                    .display = display_,
                                    .overlays = &overlays_});
}

} // namespace sonotrace
