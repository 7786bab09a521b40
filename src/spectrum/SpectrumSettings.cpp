#include "spectrum/SpectrumSettings.h"

#include "base/PlainNumber.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace sonotrace {

namespace {

std::string hertz(double frequency) {
    return plainNumber(frequency) + " Hz";
}

std::string windowTitle(FftWindowType window) {
    const bool isListed = window >= 0 && window < static_cast<FftWindowType>(kFftWindowTitles.size());
    return kFftWindowTitles[isListed ? static_cast<std::size_t>(window) : 0];
}

std::string averageText(AverageKind kind, std::int32_t spectra) {
    if (kind == AverageKind::Off)
        return "off";
    const std::string count = std::to_string(spectra);
    return kind == AverageKind::Exponential ? "exponential over " + count + " spectra"
                                            : "the last " + count + " spectra";
}

std::string axisText(const SpectrumDisplay& display) {
    if (display.logMode != 0)
        return "1 to " + plainNumber(std::pow(10.0, kSpectrumDecades), 0) + " Hz, logarithmic";
    return plainNumber(display.spectrumStartFreq) + " to " + hertz(display.spectrumEndFreq) + ", linear";
}

} // namespace

std::vector<Setting> worded(const SpectrumSettings& settings) {
    std::vector<Setting> words = {
        {"FFT size", plainNumber(settings.fftSize)},
        {"Window", windowTitle(settings.window)},
        {"Channel", kChannelFoldTitles[static_cast<std::size_t>(settings.fold)]},
        {"Averaged blocks", std::to_string(std::max(settings.blocks, 1))},
        {"Power average", averageText(settings.averageKind, settings.averagedSpectra)},
        {"Frequencies", axisText(settings.display)},
        {"Fundamental", settings.fundamentalHz ? "near " + hertz(*settings.fundamentalHz) : "strongest tone"},
        {"Mains", settings.mainsHz > 0.0 ? hertz(settings.mainsHz) : "not asked for"},
        {"Calibration", calibrationText(settings.calibration)}};
    if (settings.correctionPoints > 0)
        words.push_back({"Microphone correction", std::to_string(settings.correctionPoints) + " points"});
    return words;
}

} // namespace sonotrace
