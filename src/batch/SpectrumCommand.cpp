#include "base/SampleRate.h"
#include "batch/AudioFile.h"
#include "batch/ChannelLevels.h"
#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "batch/Commands.h"
#include "batch/FileSpectra.h"
#include "batch/Progress.h"
#include "batch/ReadAhead.h"
#include "batch/ReadingsJson.h"
#include "batch/StandardStreams.h"
#include "measure/SpectrumReader.h"
#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumWording.h"
#include "widgets/LevelText.h"
#include "widgets/NumberText.h"

#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <string>

namespace sonotrace {

namespace {

constexpr double kNyquist = kSampleRate / 2.0;
constexpr double kLongest = 1e9;                                                             // s
constexpr std::array<const char*, 4> kChannelWords = {"sum", "left", "right", "difference"}; // as ChannelFold

/// What is asked for on the command line.
struct Request {
    std::string input;
    AudioFileOptions range;
    FileSpectraSettings spectra;
    SpectrumQuestion question;
    bool isJson = false;
};

/// What came out.
struct Result {
    ChannelLevels levels;
    SpectrumReadings readings;
    bool isAveraged = false; ///< several blocks, and not of silence
};

void addArguments(CommandLine& line) {
    line.addArgument("IN", "Sound file (WAV, FLAC, AIFF and others) to measure; - is standard input.");
    line.addOption({"fft-size"}, "N", "Points per transform, a power of two from 64 to 131072.", "16384");
    line.addOption({"window"}, "NAME", "Data window: " + listedChoices(kFftWindowTitles) + ".", "hann");
    line.addOption({"average"}, "N", "Blocks averaged sample by sample for a spectrum.", "1");
    line.addOption({"channel"}, "NAME", listedChoices(kChannelWords) + " (left + right, left - right).",
                   "left");
    line.addOption({"from"}, "HZ", "Lower end of the band in which noise is measured.", "0");
    line.addOption({"to"}, "HZ", "Upper end of that band.", "22050");
    line.addOption({"fundamental"}, "HZ",
                   "Where the fundamental is. Without it, the strongest tone is taken.");
    line.addOption({"mains"}, "HZ", "Measure hum of the mains at 50 or 60 Hz and its multiples.");
    line.addOption({"start"}, "S", "Leave out so many seconds at the beginning.", "0");
    line.addOption({"seconds"}, "S", "Read no more than so many seconds.");
    line.addFlag({"resample"}, "Convert a file of another rate than 44100 Hz instead of refusing it.");
    line.addFlag({"json"}, "Print JSON, with all digits.");
}

Request readRequest(const CommandLine& line) {
    Request request;
    request.input = line.argumentPath(0);
    request.range = {.startSeconds = line.number("start", 0.0, kLongest),
                     .seconds = line.numberIfSet("seconds", 0.0, kLongest),
                     .resamples = line.isSet("resample")};
    const int size = line.integer("fft-size", kSpectrumFftSizes.front(), kSpectrumFftSizes.back());
    if (std::ranges::find(kSpectrumFftSizes, size) == kSpectrumFftSizes.end())
        throw CommandError("--fft-size takes a power of two, not " + std::to_string(size), kWrongArguments);
    request.spectra = {.fftSize = size,
                       .windowType = static_cast<FftWindowType>(line.choice("window", kFftWindowTitles)),
                       .blocks = line.integer("average", 1, 1000000),
                       .fold = static_cast<ChannelFold>(line.choice("channel", kChannelWords))};
    request.question = {.fromHz = line.number("from", 0.0, kNyquist),
                        .toHz = line.number("to", 0.0, kNyquist),
                        .fundamentalHz = line.numberIfSet("fundamental", 0.0, kNyquist)};
    if (line.isSet("mains")) {
        request.question.mainsHz = line.number("mains", 50.0, 60.0);
        if (request.question.mainsHz != 50.0 && request.question.mainsHz != 60.0)
            throw CommandError("--mains is 50 or 60", kWrongArguments);
    }
    request.isJson = line.isSet("json");
    return request;
}

template <typename Sample>
void pass(AudioFile& file, FileSpectra& spectra, ChannelLevels& levels) {
    const auto frames = file.frames();
    Progress progress(frames ? std::optional(static_cast<double>(*frames) / kSampleRate) : std::nullopt);
    readAhead<Sample>(file, [&](std::span<const Sample> interleaved) {
        levels.add(interleaved);
        spectra.take(interleaved);
        progress.update(static_cast<double>(levels.frames()) / kSampleRate);
    });
    spectra.finish();
}

Result measure(AudioFile& file, FileSpectra& spectra, const SpectrumQuestion& question) {
    Result result;
    if (file.isShort())
        pass<std::int16_t>(file, spectra, result.levels);
    else
        pass<double>(file, spectra, result.levels);
    if (spectra.spectra() == 0)
        throw CommandError(file.name() + " holds " + std::to_string(result.levels.frames()) +
                           " samples: a spectrum with these settings needs " +
                           std::to_string(spectra.framesPerSpectrum()) + " (FFT size x average)");
    if (spectra.wrapped() > 0)
        warn(std::string("the ") + kChannelWords[static_cast<std::size_t>(spectra.settings().fold)] +
             " of the channels is beyond 16 bits in " + std::to_string(spectra.wrapped()) +
             " samples, and wraps around as in the spectrum's window");
    SpectrumReader reader;
    reader.take({spectra.blockSum(), spectra.windowCoeffs(), spectra.settings().blocks});
    result.readings = reader.read(question);
    const auto isSound = [](double sample) { return sample != 0.0; };
    result.isAveraged = spectra.settings().blocks > 1 && std::ranges::any_of(spectra.blockSum(), isSound);
    return result;
}

/// Of the last spectrum, in seconds from where the reading began.
double lastSpectrumAt(const FileSpectra& spectra) {
    return static_cast<double>((spectra.spectra() - 1) * spectra.framesPerSpectrum()) / kSampleRate;
}

QString textLine(const QString& name, const QString& value) {
    return name.leftJustified(14) + value + "\n";
}

QString levelLine(const ChannelLevel& level) {
    const auto dbfs = [](double value) { return levelText({}, value); };
    return QString("peak %1  RMS %2  %3")
        .arg(dbfs(level.peakDbfs()), dbfs(level.rmsDbfs()),
             level.clips == 0 ? QString("not clipped") : QString("clipped in %1 places").arg(level.clips));
}

std::string asText(const Request& request, const AudioFile& file, const FileSpectra& spectra,
                   const Result& result) {
    const FileSpectraSettings& settings = spectra.settings();
    const double seconds = static_cast<double>(result.levels.frames()) / kSampleRate;
    QString text = textLine("File", QString::fromStdString(file.name()).simplified());
    text += textLine("Sound", QString("%1 Hz, %2, %3 s, %4")
                                  .arg(file.rate())
                                  .arg(file.channels() == 1 ? "mono" : "stereo", textWithDecimals(seconds, 3),
                                       QString::fromStdString(file.format())));
    text += textLine("Left", levelLine(result.levels.left()));
    text += textLine("Right", levelLine(result.levels.right()));
    text += textLine("Spectrum", QString("%1 points, %2, %3, %4 averaged, the last of %5, at %6 s")
                                     .arg(settings.fftSize)
                                     .arg(kFftWindowTitles[static_cast<std::size_t>(settings.windowType)],
                                          kChannelFoldTitles[static_cast<std::size_t>(settings.fold)])
                                     .arg(settings.blocks)
                                     .arg(spectra.spectra())
                                     .arg(textWithDecimals(lastSpectrumAt(spectra), 3)));
    const auto level = [](double levelDbfs) { return levelText({}, levelDbfs); };
    for (const Reading& reading :
         wordedSpectrum(result.readings, request.question, true, level, result.isAveraged))
        text += textLine(reading.name, reading.value);
    return text.toStdString();
}

QJsonObject jsonOfLevel(const ChannelLevel& level) {
    return {{"peakDbfs", jsonOf(level.peakDbfs())},
            {"rmsDbfs", jsonOf(level.rmsDbfs())},
            {"clips", static_cast<qint64>(level.clips)}};
}

std::string asJson(const Request& request, const AudioFile& file, const FileSpectra& spectra,
                   const Result& result) {
    const FileSpectraSettings& settings = spectra.settings();
    const QJsonObject sound{{"name", QString::fromStdString(file.name())},
                            {"format", QString::fromStdString(file.format())},
                            {"rateHz", file.rate()},
                            {"channels", file.channels()},
                            {"frames", static_cast<qint64>(result.levels.frames())},
                            {"left", jsonOfLevel(result.levels.left())},
                            {"right", jsonOfLevel(result.levels.right())}};
    const QJsonObject asked{
        {"fftSize", settings.fftSize},
        {"window", typedChoice(kFftWindowTitles[static_cast<std::size_t>(settings.windowType)])},
        {"average", settings.blocks},
        {"channel", kChannelWords[static_cast<std::size_t>(settings.fold)]},
        {"fromHz", request.question.fromHz},
        {"toHz", request.question.toHz},
        {"fundamentalHz", jsonOf(request.question.fundamentalHz)},
        {"mainsHz", request.question.mainsHz > 0.0 ? QJsonValue(request.question.mainsHz) : QJsonValue()},
        {"startSeconds", request.range.startSeconds}};
    const QJsonObject all{{"file", sound},
                          {"settings", asked},
                          {"spectra", static_cast<qint64>(spectra.spectra())},
                          {"lastSpectrumAtSeconds", lastSpectrumAt(spectra)},
                          {"readings", jsonOf(result.readings)}};
    return QJsonDocument(all).toJson().toStdString();
}

} // namespace

int runSpectrum(int argc, char** argv) {
    CommandLine line(
        "Measure a sound file: the readings of the spectrum's window for the last whole spectrum, "
        "and the levels of both channels.");
    addArguments(line);
    if (!line.parse(argc, argv))
        return 0;
    const Request request = readRequest(line);
    AudioFile file(request.input, request.range);
    FileSpectra spectra(request.spectra);
    const Result result = measure(file, spectra, request.question);
    printOut(request.isJson ? asJson(request, file, spectra, result)
                            : asText(request, file, spectra, result));
    return 0;
}

} // namespace sonotrace
