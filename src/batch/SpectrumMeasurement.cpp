#include "batch/SpectrumMeasurement.h"

#include "base/SampleRate.h"
#include "batch/ChannelOption.h"
#include "batch/CommandError.h"
#include "batch/Progress.h"
#include "batch/ReadAhead.h"

#include <algorithm>

namespace sonotrace {

namespace {

template <typename Sample>
void pass(SpectrumMeasurement& measurement) {
    const auto frames = measurement.file.frames();
    Progress progress(frames ? std::optional(static_cast<double>(*frames) / kSampleRate) : std::nullopt);
    readAhead<Sample>(measurement.file, [&](std::span<const Sample> interleaved) {
        measurement.levels.add(interleaved);
        measurement.spectra.take(interleaved);
        progress.update(static_cast<double>(measurement.levels.frames()) / kSampleRate);
    });
    measurement.spectra.finish();
}

} // namespace

SpectrumMeasurement::SpectrumMeasurement(AudioFile& input, const FileSpectraSettings& settings,
                                         const SpectrumQuestion& asked)
    : file(input), spectra(settings), question(asked) {
    if (file.isShort())
        pass<std::int16_t>(*this);
    else
        pass<double>(*this);
    if (spectra.spectra() == 0)
        throw CommandError(file.name() + " holds " + std::to_string(levels.frames()) +
                           " samples: a spectrum with these settings needs " +
                           std::to_string(spectra.framesPerSpectrum()) + " (FFT size x average)");
    warnIfWrapped(spectra.wrapped(), settings.fold, "spectrum");
    SpectrumReader reader;
    reader.take({spectra.blockSum(), spectra.windowCoeffs(), settings.blocks});
    readings = reader.read(question);
    const auto isSound = [](double sample) { return sample != 0.0; };
    isAveraged = settings.blocks > 1 && std::ranges::any_of(spectra.blockSum(), isSound);
}

double SpectrumMeasurement::lastSpectrumAt() const {
    return file.startSeconds() +
           static_cast<double>((spectra.spectra() - 1) * spectra.framesPerSpectrum()) / kSampleRate;
}

} // namespace sonotrace
