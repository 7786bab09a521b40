#include "base/SampleRate.h"
#include "batch/BlockQueue.h"
#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "batch/Commands.h"
#include "batch/OutputFile.h"
#include "batch/Progress.h"
#include "batch/StandardStreams.h"
#include "batch/SweepText.h"
#include "generator/OutputRender.h"
#include "generator/SettingsFile.h"
#include "generator/WavRecorder.h"
#include "platform/StreamDescription.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <future>
#include <string>
#include <vector>

namespace sonotrace {

namespace {

constexpr std::size_t kFrameBytes = 4;
constexpr std::uint64_t kMostFrames = (0xFFFFFFFFU - (kWavHeaderBytes - 8)) / kFrameBytes;
constexpr double kMostSeconds = static_cast<double>(kMostFrames) / kSampleRate;
constexpr std::size_t kBuffersPerBlock = 50; ///< about a megabyte: few, large writes
constexpr std::size_t kBlocksAhead = 4;

using Block = std::vector<std::int16_t>;

/// All that plays.
struct Instrument {
    GeneratorBank bank;
    SweepParameters sweep;
    SineTable sineTable;
    WavRecorder recorder;
    OutputRender output{bank, sweep, sineTable, recorder};
};

/// The bytes of a settings file, and a sign whether there are more.
std::string readSettings(const std::string& path) {
    std::FILE* const file = path == "-" ? stdin : std::fopen(path.c_str(), "rbe");
    if (!file)
        failToRead(path, errno);
    std::string bytes(kSettingsFileBytes + 1, '\0');
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    const int error = std::ferror(file) != 0 ? errno : 0;
    if (file != stdin)
        std::fclose(file);
    if (error != 0)
        failToRead(path, error);
    return bytes;
}

void openSettings(GeneratorBank& bank, const std::string& path) {
    const std::string bytes = readSettings(path);
    if (bytes.size() < kSettingsFileBytes)
        throw CommandError(path + " is too short for a settings file: " + std::to_string(bytes.size()) +
                           " bytes of " + std::to_string(kSettingsFileBytes));
    if (bytes.size() > kSettingsFileBytes)
        warn(path + " is too long for a settings file: perhaps it is none");
    const SettingsOfAll all = decodeSettingsFile(std::as_bytes(std::span(bytes)));
    for (std::size_t i = 0; i < all.size(); ++i)
        bank.slots[i].store(withinLimits(all[i]));
}

/// Renders in the buffers that the program plays, and writes on a thread of its own.
void renderTo(OutputFile& file, OutputRender& output, std::uint64_t frames) {
    BlockQueue<Block> rendered(kBlocksAhead);
    BlockQueue<Block> spare(kBlocksAhead + 2);
    auto writing = std::async(std::launch::async, [&] {
        try {
            while (auto block = rendered.pop()) {
                file.write(std::as_bytes(std::span(*block)));
                spare.push(std::move(*block));
            }
        } catch (...) {
            rendered.abandon();
            spare.abandon();
            throw;
        }
    });
    for (std::size_t i = 0; i < kBlocksAhead + 2; ++i)
        spare.push({});
    constexpr std::size_t kBufferSamples = 2 * kOutputFramesPerBuffer;
    Progress progress(static_cast<double>(frames) / kSampleRate);
    for (std::uint64_t done = 0; done < frames;) {
        auto block = spare.pop();
        if (!block)
            break;
        block->resize(kBuffersPerBlock * kBufferSamples);
        for (std::size_t i = 0; i < kBuffersPerBlock; ++i)
            output.render(std::span(*block).subspan(i * kBufferSamples, kBufferSamples));
        const std::uint64_t part = std::min<std::uint64_t>(frames - done, block->size() / 2);
        block->resize(2 * static_cast<std::size_t>(part));
        done += part;
        if (!rendered.push(std::move(*block)))
            break;
        progress.update(static_cast<double>(done) / kSampleRate);
    }
    rendered.finish();
    writing.get();
}

void addArguments(CommandLine& line) {
    line.addArgument("SETTINGS",
                     "Settings file of the generators; - is standard input. Without one they are off.", true);
    line.addOption({"sweep"}, "START,END,RATE[,log][,reverse][,once]",
                   "START,END,RATE[,log][,reverse][,once]: sweep from START to END Hz on both channels at "
                   "full volume, again and again or once. RATE is "
                   "in Hz a second, with log in 0.046417 % of the frequency a second.");
    line.addOption({"seconds"}, "S", "How long the sound is. Needed.");
    line.addOption({"o", "output"}, "OUT.wav", "File to write; - is standard output. Needed.");
}

} // namespace

int runRender(int argc, char** argv) {
    CommandLine line(
        "Write what the program plays with these settings to a WAV file (44100 Hz, 16 bits, stereo), "
        "sample by sample the same, as fast as it can be computed.");
    addArguments(line);
    if (!line.parse(argc, argv))
        return 0;
    const std::string settings = line.argumentPath(0);
    if (settings.empty() && !line.isSet("sweep"))
        throw CommandError("nothing is to sound: give SETTINGS or --sweep (try --help)", kWrongArguments);
    for (const char* needed : {"seconds", "output"})
        if (!line.isSet(needed))
            throw CommandError(std::string("--") + needed + " is missing (try --help)", kWrongArguments);
    const double seconds = line.number("seconds", 0.001, 1e9);
    if (seconds > kMostSeconds)
        throw CommandError("a WAV file holds 4 GiB, which is " +
                               std::to_string(static_cast<int>(kMostSeconds)) + " seconds: render less",
                           kWrongArguments);
    const auto frames = static_cast<std::uint64_t>(std::llround(seconds * kSampleRate));

    Instrument instrument;
    if (line.isSet("sweep"))
        setSweep(instrument.sweep, line.text("sweep").toStdString());
    if (!settings.empty())
        openSettings(instrument.bank, settings);
    instrument.output.syncPhases();
    OutputFile file(line.outputPath("output"));
    if (file.isTerminal())
        throw CommandError("a terminal cannot show sound: give a file or a pipe", kWrongArguments);
    file.write(wavHeader(2, 2, 16, static_cast<std::uint32_t>(frames * kFrameBytes)));
    renderTo(file, instrument.output, frames);
    file.commit();
    return 0;
}

} // namespace sonotrace
