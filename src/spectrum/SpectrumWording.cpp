#include "spectrum/SpectrumWording.h"

#include "widgets/NumberText.h"

#include <cmath>

namespace sonotrace {

namespace {

constexpr double kThdIsNoise = 6.0; // dB above what noise alone reads
const QString kNothing = QStringLiteral("–");

QString ratio(const std::optional<double>& value) {
    return value ? decibelText(*value) : kNothing;
}

/// Also as a part of the fundamental.
QString distortion(const std::optional<double>& value) {
    if (!value)
        return kNothing;
    return QString("%1 (%2 %)")
        .arg(decibelText(*value))
        .arg(100.0 * std::pow(10.0, *value / 20.0), 0, 'g', 3);
}

/// The lines of the mains and their sum.
void addMains(std::vector<Reading>& shown, const SpectrumReadings& now, double mainsHz,
              const SpectrumLevelText& levelText) {
    for (std::size_t i = 0; i < now.mains.size(); ++i)
        shown.push_back(
            {QString("Mains %1 Hz").arg(mainsHz * static_cast<double>(i + 1)),
             now.mains[i] ? wordedLevel(now.mains[i]->levelDbfs, levelText) : kNothing,
             "The strongest line within 0.4 % of the frequency. A dash: the FFT size is too small "
             "to tell the lines apart"});
    shown.push_back({"Hum", wordedLevel(now.humDbfs, levelText), "Sum of the ten lines of the mains"});
}

} // namespace

QString hertzText(double frequencyHz) {
    return textWithDecimals(frequencyHz, 2) + " Hz";
}

QString decibelText(double decibels) {
    return textWithDecimals(decibels, 2) + " dB";
}

QString wordedLevel(const std::optional<double>& levelDbfs, const SpectrumLevelText& levelText) {
    return levelDbfs ? levelText(*levelDbfs) : kNothing;
}

QString wordedTone(const std::optional<SpectrumTone>& tone, const SpectrumLevelText& levelText,
                   bool isAveraged) {
    if (!tone)
        return kNothing;
    return hertzText(tone->frequencyHz) + "  " +
           (tone->levelDbfs ? levelText(*tone->levelDbfs)
            : isAveraged    ? QString("averaged away")
                            : kNothing);
}

std::vector<Reading> wordedSpectrum(const SpectrumReadings& now, const SpectrumQuestion& question,
                                    bool harmonicsListed, const SpectrumLevelText& levelText,
                                    bool isAveraged) {
    const bool isThdNoise = now.thdDb && now.thdNoiseDb && *now.thdDb - *now.thdNoiseDb < kThdIsNoise;
    std::vector<Reading> shown = {
        {question.fundamentalHz ? "Fundamental" : "Peak",
         wordedTone(question.fundamentalHz ? now.fundamental : now.peak, levelText, isAveraged),
         "Frequency and level of the strongest tone, or of the one near the frequency typed: a lone sine is "
         "read "
         "to 0.0001 of a bin and 0.001 dB"},
        {"THD", (isThdNoise ? "≤ " : "") + distortion(now.thdDb),
         "Harmonics 2 to 10 below 22050 Hz, to the fundamental. \"≤\": as good as all of it is noise"},
        {"THD+N", distortion(now.thdPlusNoiseDb),
         "Harmonics and noise from 0 to 22050 Hz, to the fundamental"},
        {"SNR", ratio(now.snrDb), "Fundamental to the noise from 0 to 22050 Hz, without harmonics"},
        {"SINAD", ratio(now.sinadDb), "Fundamental to harmonics and noise"},
        {"Noise", wordedLevel(now.noiseDbfs, levelText),
         "Sum of the noise between From and to, without fundamental and harmonics"},
        {"A-weighted", wordedLevel(now.noiseADbfs, levelText), "The same, weighted as the ear hears it"},
        {"Noise floor", now.noiseFloorDbfs ? levelText(*now.noiseFloorDbfs) + "/bin" : kNothing,
         "Level of the noise in a single bin between From and to"}};
    if (harmonicsListed)
        for (std::size_t i = 0; i < now.harmonics.size(); ++i)
            shown.push_back(
                {QString("Harmonic %1").arg(i + 2),
                 now.harmonics[i] ? wordedLevel(now.harmonics[i]->levelDbfs, levelText) : kNothing,
                 "Level at the multiple of the fundamental's frequency"});
    if (question.mainsHz > 0.0)
        addMains(shown, now, question.mainsHz, levelText);
    return shown;
}

} // namespace sonotrace
