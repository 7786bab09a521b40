#include "batch/InputOptions.h"

#include "batch/CommandLine.h"

namespace sonotrace {

namespace {
constexpr double kLongest = 1e9; // s
}

void addInputOptions(CommandLine& line) {
    line.addArgument("IN", "Sound file (WAV, FLAC, AIFF and others); - is standard input.");
    line.addOption({"start"}, "S", "Leave out so many seconds at the beginning.", "0");
    line.addOption({"seconds"}, "S", "Read no more than so many seconds.");
    line.addFlag({"resample"}, "Convert a file of another rate than 44100 Hz instead of refusing it.");
}

AudioFile openInput(const CommandLine& line) {
    return AudioFile(line.argumentPath(0), {.startSeconds = line.number("start", 0.0, kLongest),
                                            .seconds = line.numberIfSet("seconds", 0.0, kLongest),
                                            .resamples = line.isSet("resample")});
}

} // namespace sonotrace
