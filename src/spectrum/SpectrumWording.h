#pragma once

#include "measure/SpectrumReader.h"
#include "widgets/Reading.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace sonotrace {

/// Words a level in dBFS, in the unit the device is calibrated in.
using SpectrumLevelText = std::function<QString(double levelDbfs)>;

/// "1000.00 Hz", and "-3.00 dB" with two digits after the point always.
QString hertzText(double frequencyHz);
QString decibelText(double decibels);

/// A level, or a dash.
QString wordedLevel(const std::optional<double>& levelDbfs, const SpectrumLevelText& levelText);

/// Frequency and level of a tone, or a dash. `isAveraged`: the spectrum is of several blocks and not of
/// silence, so that a tone without a level has been averaged away.
QString wordedTone(const std::optional<SpectrumTone>& tone, const SpectrumLevelText& levelText,
                   bool isAveraged);

/// Words the readings of a spectrum, as the answer to `question`: always as many for the same question. The
/// harmonics' levels only where they are listed, the mains' where they were asked for.
std::vector<Reading> wordedSpectrum(const SpectrumReadings& readings, const SpectrumQuestion& question,
                                    bool harmonicsListed, const SpectrumLevelText& levelText,
                                    bool isAveraged);

} // namespace sonotrace
