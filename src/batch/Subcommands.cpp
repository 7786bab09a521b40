#include "batch/Subcommands.h"

#include "batch/CommandError.h"
#include "batch/Commands.h"
#include "batch/Interruption.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

namespace sonotrace {

namespace {

struct Subcommand {
    const char* name;
    const char* purpose;
    int (*run)(int argc, char** argv);
};

constexpr Subcommand kSubcommands[] = {
    {"devices", "List the sound devices", runDevices},
    {"measure", "Play, listen, and print a response, distortion or noise", runMeasure},
    {"render", "Write what the generators and the sweep play to a WAV file", runRender},
    {"scope", "Read levels, frequency and delay of a file as the oscilloscope does", runScope},
    {"spectrum", "Measure the spectrum and the levels of a sound file", runSpectrum},
    {"waterfall", "Paint the waterfall of a recording", runWaterfall},
};

int say(const char* name, const char* message, int status) {
    if (*message != '\0')
        std::fprintf(stderr, "sonotrace %s: %s\n", name, message);
    return status;
}

} // namespace

std::optional<int> runSubcommand(int argc, char** argv) {
    const auto isNamed = [&](const Subcommand& subcommand) {
        return std::strcmp(subcommand.name, argv[1]) == 0;
    };
    const auto* const found = argc > 1 ? std::ranges::find_if(kSubcommands, isNamed) : std::end(kSubcommands);
    if (found == std::end(kSubcommands))
        return std::nullopt;
    // Scripts get the same text everywhere, and the toolkit has nothing to say about a locale that it
    // dislikes.
    setenv("LC_ALL", "C.UTF-8", 1); // NOLINT(concurrency-mt-unsafe)
    endOnSignals();
    try {
        return found->run(argc, argv);
    } catch (const CommandError& error) {
        return say(found->name, error.what(), error.status());
    } catch (const std::bad_alloc&) {
        return say(found->name, "there is not enough memory", kCouldNot);
    } catch (const std::exception& error) {
        return say(found->name, error.what(), kCouldNot);
    }
}

std::string listSubcommands() {
    std::string list;
    for (const Subcommand& subcommand : kSubcommands) {
        std::string line = std::string("  ") + subcommand.name;
        line.resize(13, ' ');
        list += line + subcommand.purpose + "\n";
    }
    return list;
}

} // namespace sonotrace
