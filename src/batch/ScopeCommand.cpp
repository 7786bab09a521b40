#include "base/MeasurementOrigin.h"
#include "base/SampleRate.h"
#include "base/SystemLog.h"
#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "batch/Commands.h"
#include "batch/Exports.h"
#include "batch/InputOptions.h"
#include "batch/ScopeJson.h"
#include "batch/StandardStreams.h"
#include "measure/ChannelDelay.h"
#include "scope/ScopeCapture.h"
#include "scope/ScopeControls.h"
#include "scope/ScopeReadings.h"
#include "scope/ScopeReport.h"
#include "scope/ScopeSettings.h"
#include "scope/ScopeTable.h"

#include <QJsonDocument>

#include <array>
#include <cmath>
#include <vector>

namespace sonotrace {

namespace {

constexpr const char* kSteady[] = {"off", "1", "2"};

/// One number for both channels, or "left,right".
std::array<double, 2> pair(const CommandLine& line, const QString& option, double least, double most) {
    const QStringList parts = line.text(option).split(',');
    std::array<double, 2> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        bool isNumber = false;
        values[i] = parts.value(static_cast<qsizetype>(i), parts.first()).toDouble(&isNumber);
        if (!isNumber || parts.size() > 2 || !(values[i] >= least && values[i] <= most))
            throw CommandError(
                QString("--%1 takes a number from %2 to %3, or one for each channel with a comma "
                        "between them, not \"%4\" (try --help)")
                    .arg(option)
                    .arg(least)
                    .arg(most)
                    .arg(line.text(option))
                    .toStdString(),
                kWrongArguments);
    }
    return values;
}

ScopeControls controlsOf(const CommandLine& line) {
    ScopeControls controls;
    controls.range = pair(line, "gain", 1.0, 100.0);
    controls.offset = pair(line, "offset", -10000.0, 10000.0);
    controls.trigger = pair(line, "trigger", -32768.0, 32767.0);
    controls.triggerPolarity.fill(line.isSet("falling"));
    controls.invert.fill(!line.isSet("invert")); // set: as captured
    controls.sweep = line.integer("samples", 10, 10000);
    controls.steady = static_cast<std::int32_t>(line.choice("steady", kSteady));
    return controls;
}

/// Gives the scope a block, as its input would.
void captureBlock(AudioFile& file, ScopeCapture& capture) {
    std::vector<std::int16_t> block(2 * kScopeSignal);
    const std::size_t frames = file.read(block);
    if (frames < kScopeSignal)
        throw CommandError(file.name() + ": a picture needs " + std::to_string(kScopeSignal) +
                           " samples, a quarter of a second, and there are " + std::to_string(frames));
    capture.capture(block);
    capture.capture(std::vector<std::int16_t>(block.size())); // of two buffers the first is shown
}

std::string readingsText(const ScopeBlockReadings& readings) {
    const auto worded = wordedReadings(&readings, {});
    QString text;
    for (const Reading& reading : worded)
        text += QString("%1%2\n").arg(reading.name, -14).arg(reading.value.trimmed());
    return text.toStdString();
}

} // namespace

int runScope(int argc, char** argv) {
    CommandLine line(
        "Read a quarter of a second of a sound file as the oscilloscope does: levels, frequency, "
        "duty, and the delay between the channels.");
    addInputOptions(line);
    line.addOption({"samples"}, "N", "Samples that the picture shows, 10 to 10000.", "1000");
    line.addOption({"gain"}, "G", "Range, 1 to 100.", "1");
    line.addOption({"offset"}, "POINTS", "Points by which a trace is moved up.", "0");
    line.addOption({"trigger"}, "LEVEL", "Sample value that the trace begins at.", "0");
    line.addFlag({"falling"}, "Begin where the signal falls through that value.");
    line.addFlag({"invert"}, "Show both channels upside down.");
    line.addOption({"steady"}, "CHANNEL", "Draw both traces around a crossing of channel 1 or 2.", "off");
    Exports::addOptions(line);
    line.addFlag({"json"}, "Print JSON.");
    if (!line.parse(argc, argv))
        return 0;
    const ScopeControls controls = controlsOf(line);
    Exports exports(line);
    silenceSystemLog(); // the search has something to say
    AudioFile file = openInput(line);
    ScopeCapture capture(controls, [] {});
    captureBlock(file, capture);
    ScopeBlockReadings readings;
    for (const std::int32_t ch : {0, 1})
        readings.channels[static_cast<std::size_t>(ch)] = readSignal(capture.raw(ch), kSampleRate);
    readings.delay = ChannelDelay(kScopeSignal, kSampleRate).read(capture.raw(0), capture.raw(1));
    ScopeTrace trace;
    trace.build(controls, capture, 1.0, 1.0); // searches; a picture is built anew in its size
    const auto origin = originOf(file.described());
    const auto settings = worded(controls, {});
    exports.write([&] { return scopeTable(origin, settings, trace, capture, {}); },
                  [&] {
                      return scopeReport({.title = {},
                                          .origin = origin,
                                          .settings = settings,
                                          .readings = wordedReadings(&readings, {}),
                                          .group = 2},
                                         {.trace = trace, .offsets = controls.offset});
                  });
    if (exports.takeStandardOutput())
        return 0;
    if (line.isSet("json"))
        printOut(QJsonDocument(scopeJson(readings)).toJson().toStdString());
    else
        printOut(readingsText(readings));
    return 0;
}

} // namespace sonotrace
