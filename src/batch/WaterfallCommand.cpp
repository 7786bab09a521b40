#include "base/MeasurementOrigin.h"
#include "base/SampleRate.h"
#include "base/SystemLog.h"
#include "batch/AudioFile.h"
#include "batch/ChannelOption.h"
#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "batch/Commands.h"
#include "batch/Exports.h"
#include "batch/InputOptions.h"
#include "batch/OutputFile.h"
#include "batch/StandardStreams.h"
#include "batch/WaterfallPainting.h"
#include "waterfall/PictureFile.h"
#include "waterfall/RecordedWaterfall.h"
#include "waterfall/WaterfallReport.h"
#include "waterfall/WaterfallTable.h"

#include <bit>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

namespace sonotrace {

namespace {

void addArguments(CommandLine& line) {
    addInputOptions(line);
    Exports::addOptions(line);
    line.addOption({"raw"}, "FILE", "Write the bare picture as PNG, 1536 x 1024 pixels.");
    line.addOption({"fft-size"}, "N", "Samples of a transform, a power of two from 64 to 131072.", "8192");
    line.addOption({"window"}, "NAME", "Data window: " + listedChoices(kFftWindowTitles) + ".", "hann");
    addChannelOption(line);
    line.addOption(
        {"speedup"}, "S",
        "Lines for the samples of a transform, a column each; of a long recording the last ones "
        "are shown. Without this and --seconds-per-column, columns are chosen so that the recording "
        "fills the picture; of a pipe, the last lines are shown.");
    line.addOption({"seconds-per-column"}, "T", "Seconds that a column stands for, 0.1 to 86400.");
    line.addOption(
        {"merge"}, "MERGE",
        "What a column is of its lines, if it has more than one: " + listedChoices(kLineMergeTitles) + ".",
        "maximum");
    line.addOption({"from"}, "HZ", "Lowest frequency.", "0");
    line.addOption({"to"}, "HZ", "Highest frequency, at most 22050.", "22050");
    line.addOption({"min-db"}, "DB",
                   "Level where the colours begin, in the picture's own decibels. Default: what fits.");
    line.addOption({"max-db"}, "DB", "Level where the colours end. Default: what fits.");
    line.addFlag({"grey"}, "Paint in grey.");
}

std::int32_t log2LengthOf(const CommandLine& line) {
    const auto length = static_cast<std::uint32_t>(line.integer("fft-size", 64, kLargestFrameLength));
    if (!std::has_single_bit(length))
        throw CommandError("--fft-size takes a power of two, not \"" + std::to_string(length) + "\"",
                           kWrongArguments);
    return std::countr_zero(length);
}

std::optional<float> levelIfSet(const CommandLine& line, const QString& option) {
    const auto level = line.numberIfSet(option, -1000.0, 1000.0);
    return level ? std::optional(static_cast<float>(*level)) : std::nullopt;
}

RecordedWaterfallSettings settingsOf(const CommandLine& line) {
    RecordedWaterfallSettings settings;
    settings.log2Length = log2LengthOf(line);
    settings.window = static_cast<FftWindowType>(line.choice("window", kFftWindowTitles));
    settings.channel = channelOf(line);
    settings.merge = static_cast<LineMerge>(line.choice("merge", kLineMergeTitles));
    std::tie(settings.startFreq, settings.endFreq) = line.band(0.0, kSampleRate / 2.0);
    settings.minDB = levelIfSet(line, "min-db");
    settings.maxDB = levelIfSet(line, "max-db");
    settings.isColoured = !line.isSet("grey");
    if (line.isSet("speedup"))
        settings.speedup = line.integer("speedup", 1, 1 << settings.log2Length);
    settings.secondsPerColumn = line.numberIfSet("seconds-per-column", kLeastSlowSeconds, kMostSlowSeconds);
    return settings;
}

void paint(RecordedWaterfall& waterfall, const RecordedWaterfallSettings& settings, AudioFile& file) {
    const PaintedSound painted = paintFile(waterfall, settings, file);
    const auto line = static_cast<std::uint64_t>(waterfall.parameters().frameLength());
    if (!waterfall.finish())
        throw CommandError(file.name() + " holds " + std::to_string(painted.frames) + " samples: " +
                           (painted.frames < line ? "a line needs " + std::to_string(line) + " (FFT size)"
                                                  : "that is less than a column (--seconds-per-column)"));
    warnIfWrapped(painted.wrapped, settings.channel, "waterfall");
}

} // namespace

int runWaterfall(int argc, char** argv) {
    CommandLine line("Paint the waterfall of a recording: the same lines, to the bit, that the window paints "
                     "of the same samples.");
    addArguments(line);
    if (!line.parse(argc, argv))
        return 0;
    const RecordedWaterfallSettings settings = settingsOf(line);
    Exports exports(line);
    std::optional<OutputFile> raw;
    if (line.isSet("raw"))
        raw.emplace(line.outputPath("raw"));
    if (raw && raw->path() == "-" && exports.takeStandardOutput())
        throw CommandError("only one of the files can be standard output", kWrongArguments);
    if (!exports.hasTable() && !exports.hasPicture() && !raw)
        throw CommandError("nothing is to be written: give --png, --pdf, --csv or --raw (try --help)",
                           kWrongArguments);
    silenceSystemLog();
    AudioFile file = openInput(line);
    RecordedWaterfall waterfall(settings, file.frames());
    paint(waterfall, settings, file);
    const WaterfallImage& image = waterfall.image();
    if (raw) {
        const QByteArray png = writtenPicture(image, "png");
        raw->write(std::string_view(png.data(), static_cast<std::size_t>(png.size())));
    }
    const MeasurementOrigin origin = originOf(file.described());
    exports.write(
        [&] { return waterfallTable(linesInView(image), originLines("waterfall", origin)); },
        [&] {
            ReportContent content;
            content.origin = origin;
            return waterfallReport(std::move(content), {waterfall.parameters(), image, image.scrolled()});
        });
    if (raw)
        raw->commit();
    return 0;
}

} // namespace sonotrace
