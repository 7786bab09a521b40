#pragma once

#include "batch/AudioFile.h"
#include "batch/ChannelLevels.h"
#include "batch/FileSpectra.h"
#include "measure/SpectrumReader.h"

#include <string>

namespace sonotrace {

/// A sound file that has been read to its end, and what its last whole spectrum measures.
struct SpectrumMeasurement {
    /// Reads and measures. Throws a CommandError where the file is shorter than a spectrum.
    SpectrumMeasurement(AudioFile& file, const FileSpectraSettings& settings,
                        const SpectrumQuestion& question);

    double lastSpectrumAt() const; ///< seconds from the file's beginning

    AudioFile& file; ///< outlives the measurement
    FileSpectra spectra;
    SpectrumQuestion question;
    ChannelLevels levels;
    SpectrumReadings readings;
    bool isAveraged = false; ///< several blocks, and not of silence
};

/// The file, its levels and the readings as the window words them, a line each.
std::string textOf(const SpectrumMeasurement& measurement);

/// The same as JSON, with all digits and the settings.
std::string jsonTextOf(const SpectrumMeasurement& measurement);

} // namespace sonotrace
