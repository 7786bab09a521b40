#include "base/FftWindows.h"
#include "base/SampleRate.h"
#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "batch/Commands.h"
#include "batch/DeviceChoice.h"
#include "batch/MeasuringBench.h"
#include "batch/OutputFile.h"
#include "batch/Progress.h"
#include "batch/ReadingsJson.h"
#include "batch/ResponseText.h"
#include "batch/StandardStreams.h"
#include "batch/ToneResponse.h"
#include "measure/CleanFrequency.h"
#include "measure/SpectrumReader.h"
#include "spectrum/SpectrumWording.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace sonotrace {

namespace {

constexpr const char* kKinds[] = {"response", "thd", "noise"};
enum Kind : std::size_t { Response, Thd, Noise };

constexpr std::int32_t kReadingBlock = 65536;
constexpr FftWindowType kReadingWindow = 8; // Blackman-Nuttall

std::array<SpectrumReadings, 2> readBoth(std::span<const std::int16_t> heard,
                                         const SpectrumQuestion& question) {
    std::vector<double> window(kReadingBlock);
    fillWindowCoeffs(kReadingWindow, kReadingBlock, window.data());
    std::vector<double> block(kReadingBlock);
    std::array<SpectrumReadings, 2> readings;
    for (std::size_t channel = 0; channel < readings.size(); ++channel) {
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = heard[2 * i + channel];
        SpectrumReader reader;
        reader.take({block, window, 1});
        readings[channel] = reader.read(question);
    }
    return readings;
}

/// The readings of both channels side by side: names, left, right.
std::string readingsText(const std::array<SpectrumReadings, 2>& readings, const SpectrumQuestion& question,
                         const QStringList& wanted) {
    const auto worded = [&](const SpectrumReadings& of) {
        const auto level = [](double levelDbfs) { return decibelText(levelDbfs) + "FS"; };
        return wordedSpectrum(of, question, true, level, false);
    };
    const auto left = worded(readings[0]);
    const auto right = worded(readings[1]);
    QString text = QString("%1%2%3\n").arg("", -14).arg("Left", -30).arg("Right");
    for (std::size_t i = 0; i < left.size(); ++i)
        if (std::ranges::any_of(wanted, [&](const QString& name) { return left[i].name.startsWith(name); }))
            text += QString("%1%2%3\n").arg(left[i].name, -14).arg(left[i].value, -30).arg(right[i].value);
    return text.toStdString();
}

void printReadings(const CommandLine& line, const MeasuringBench& bench, const char* kind,
                   const std::array<SpectrumReadings, 2>& readings, const SpectrumQuestion& question,
                   const QStringList& wanted) {
    if (!line.isSet("json")) {
        printOut(readingsText(readings, question, wanted));
        return;
    }
    const QJsonObject all{{"measurement", kind},
                          {"output", QString::fromStdString(bench.output())},
                          {"input", QString::fromStdString(bench.input())},
                          {"left", jsonOf(readings[0])},
                          {"right", jsonOf(readings[1])}};
    printOut(QJsonDocument(all).toJson().toStdString());
}

int measureThd(const CommandLine& line) {
    const double asked = line.number("frequency", 20.0, 10000.0);
    const double peakDbfs = line.number("level", -120.0, 0.0);
    const double tone[] = {nearestCleanFrequency(asked, 10000.0)};
    MeasuringBench bench(line);
    const auto heard = bench.hear(settingsOfTones(tone, peakDbfs), kReadingBlock);
    const SpectrumQuestion question{.fundamentalHz = tone[0]};
    const auto readings = readBoth(heard, question);
    const auto isHeard = [](const SpectrumReadings& of) { return of.thdPlusNoiseDb.has_value(); };
    if (std::ranges::none_of(readings, isHeard))
        throw CommandError("the tone does not stand out of the noise: is the input connected, and its volume "
                           "up?");
    printReadings(line, bench, "thd", readings, question,
                  {"Fundamental", "THD", "SNR", "SINAD", "Noise", "A-weighted", "Harmonic"});
    return 0;
}

int measureNoise(const CommandLine& line) {
    constexpr const char* kMains[] = {"none", "50", "60"};
    constexpr double kMainsHz[] = {0.0, 50.0, 60.0};
    const auto [from, to] = line.band(0.0, kSampleRate / 2.0);
    const SpectrumQuestion question{
        .fromHz = from, .toHz = to, .mainsHz = kMainsHz[line.choice("mains", kMains)]};
    MeasuringBench bench(line);
    const auto heard = bench.hear({}, kReadingBlock);
    if (std::ranges::all_of(heard, [](std::int16_t sample) { return sample == 0; }))
        warn("the input is silent, without any noise: is it muted, or its volume at 0?");
    const auto readings = readBoth(heard, question);
    printReadings(line, bench, "noise", readings, question, {"Peak", "Noise", "A-weighted", "Mains", "Hum"});
    return 0;
}

int measureResponseOf(const CommandLine& line) {
    const auto [from, to] = line.band(2.0, 22000.0);
    const ResponseQuestion question{.fromHz = from,
                                    .toHz = to,
                                    .points = line.integer("points", 1, 1000),
                                    .tonesAtOnce = line.integer("tones", 1, kGeneratorCount),
                                    .peakDbfs = line.number("level", -120.0, 0.0)};
    std::optional<OutputFile> csv;
    MeasuringBench bench(line);
    if (line.isSet("csv"))
        csv.emplace(line.path("csv"));
    std::optional<Progress> progress;
    const double roundSeconds = bench.settleSeconds() + kToneBlock / kSampleRate;
    const auto hear = [&](const SettingsOfAll& generators) { return bench.hear(generators, kToneBlock); };
    const auto points = measureResponse(hear, question, [&](int done, int all) {
        if (!progress)
            progress.emplace(all * roundSeconds);
        progress->update(done * roundSeconds);
    });
    progress.reset();
    const auto isHeard = [](const ResponsePoint& point) { return point.gainDb[0] || point.gainDb[1]; };
    if (std::ranges::none_of(points, isHeard))
        throw CommandError("no tone stands out of the noise: is the input connected, and its volume up?");
    const ResponseConditions conditions{bench.output(), bench.input(), question, bench.settleSeconds()};
    if (csv) {
        csv->write(responseTable(points, conditions));
        csv->commit();
    }
    if (csv && csv->path() == "-")
        return 0;
    printOut(line.isSet("json") ? responseJson(points, conditions) : responseText(points));
    return 0;
}

} // namespace

int runMeasure(int argc, char** argv) {
    CommandLine line(
        "Play on one device, listen to another, and print what was measured: response (how loud tones of all "
        "frequencies are heard), thd (distortion of one tone) or noise (nothing is played). The input's "
        "volume is left as it is.");
    line.addArgument("response|thd|noise", "What to measure.");
    MeasuringBench::addOptions(line);
    line.addOption({"level"}, "DBFS", "Peak of what is played, response and thd.", "-6");
    line.addOption({"frequency"}, "HZ", "Tone of thd; the nearest clean frequency is played.", "1000");
    line.addOption({"from"}, "HZ", "Begin of the response or the noise.", "20");
    line.addOption({"to"}, "HZ", "End of the response or the noise.", "20000");
    line.addOption({"points"}, "N", "Frequencies of the response.", "31");
    line.addOption({"tones"}, "N", "Tones that the response plays at a time, 1 to 13.", "13");
    line.addOption({"mains"}, "HZ", "Mains frequency whose multiples to look for in the noise: 50 or 60.",
                   "none");
    line.addOption({"csv"}, "FILE", "Write the response to a CSV file; - is standard output.");
    line.addFlag({"json"}, "Print JSON.");
    if (!line.parse(argc, argv))
        return 0;
    const QByteArray kind = line.argument(0).toUtf8();
    if (line.isSet("csv") && kind != "response")
        throw CommandError("--csv is for response", kWrongArguments);
    const auto* const found = std::ranges::find(kKinds, std::string_view(kind.constData()));
    switch (found - std::begin(kKinds)) {
    case Response:
        return measureResponseOf(line);
    case Thd:
        return measureThd(line);
    case Noise:
        return measureNoise(line);
    default:
        throw CommandError("there is no measurement \"" + kind.toStdString() +
                               "\": response, thd and noise are (try --help)",
                           kWrongArguments);
    }
}

} // namespace sonotrace
