#include "base/SampleRate.h"
#include "batch/ChannelOption.h"
#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "batch/Commands.h"
#include "batch/Exports.h"
#include "batch/InputOptions.h"
#include "batch/SpectrumExport.h"
#include "batch/SpectrumMeasurement.h"
#include "batch/StandardStreams.h"
#include "spectrum/SpectrumAnalysis.h"

#include <algorithm>

namespace sonotrace {

namespace {

constexpr double kNyquist = kSampleRate / 2.0;
constexpr int kMostBlocks = 1000000;

void addArguments(CommandLine& line) {
    addInputOptions(line);
    line.addOption({"fft-size"}, "N", "Points per transform, a power of two from 64 to 131072.", "16384");
    line.addOption({"window"}, "NAME", "Data window: " + listedChoices(kFftWindowTitles) + ".", "hann");
    line.addOption({"average"}, "N", "Blocks averaged sample by sample for a spectrum.", "1");
    addChannelOption(line);
    line.addOption({"from"}, "HZ", "Lower end of the band in which noise is measured.", "0");
    line.addOption({"to"}, "HZ", "Upper end of that band.", "22050");
    line.addOption({"fundamental"}, "HZ",
                   "Where the fundamental is. Without it, the strongest tone is taken.");
    line.addOption({"mains"}, "HZ", "Measure hum of the mains at 50 or 60 Hz and its multiples.");
    Exports::addOptions(line);
    line.addFlag({"log"}, "Picture with a logarithmic scale of frequencies, from 1 to 19953 Hz.");
    line.addFlag({"json"}, "Print JSON, with all digits.");
}

FileSpectraSettings settingsOf(const CommandLine& line, bool collectsPowers) {
    const int size = line.integer("fft-size", kSpectrumFftSizes.front(), kSpectrumFftSizes.back());
    if (std::ranges::find(kSpectrumFftSizes, size) == kSpectrumFftSizes.end())
        throw CommandError("--fft-size takes a power of two, not " + std::to_string(size), kWrongArguments);
    return {.fftSize = size,
            .windowType = static_cast<FftWindowType>(line.choice("window", kFftWindowTitles)),
            .blocks = line.integer("average", 1, kMostBlocks),
            .fold = channelOf(line),
            .collectsPowers = collectsPowers};
}

SpectrumQuestion questionOf(const CommandLine& line) {
    const auto [from, to] = line.band(0.0, kNyquist);
    SpectrumQuestion question{
        .fromHz = from, .toHz = to, .fundamentalHz = line.numberIfSet("fundamental", 0.0, kNyquist)};
    if (!line.isSet("mains"))
        return question;
    question.mainsHz = line.number("mains", 50.0, 60.0);
    if (question.mainsHz != 50.0 && question.mainsHz != 60.0)
        throw CommandError("--mains is 50 or 60", kWrongArguments);
    return question;
}

} // namespace

int runSpectrum(int argc, char** argv) {
    CommandLine line(
        "Measure a sound file: the readings of the spectrum's window for the last whole spectrum, "
        "and the levels of both channels.");
    addArguments(line);
    if (!line.parse(argc, argv))
        return 0;
    Exports exports(line);
    const FileSpectraSettings settings = settingsOf(line, exports.hasTable() || exports.hasPicture());
    const SpectrumQuestion question = questionOf(line);
    AudioFile file = openInput(line);
    const SpectrumMeasurement measurement(file, settings, question);
    if (settings.collectsPowers) {
        SpectrumExport spectrum(measurement, line.isSet("log"));
        exports.write([&] { return spectrum.table(); }, [&] { return spectrum.page(); });
    }
    if (!exports.takeStandardOutput())
        printOut(line.isSet("json") ? jsonTextOf(measurement) : textOf(measurement));
    return 0;
}

} // namespace sonotrace
