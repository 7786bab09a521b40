#include "batch/SweepText.h"

#include "base/SampleRate.h"
#include "batch/CommandError.h"

#include <charconv>
#include <string>
#include <vector>

namespace sonotrace {

namespace {

[[noreturn]] void refuse(std::string_view text) {
    throw CommandError("--sweep takes START,END,RATE[,log][,reverse][,once], such as 20,20000,500, not \"" +
                           std::string(text) + "\" (try --help)",
                       kWrongArguments);
}

std::vector<std::string_view> parts(std::string_view text) {
    std::vector<std::string_view> found;
    for (;;) {
        const std::size_t comma = text.find(',');
        found.push_back(text.substr(0, comma));
        if (comma == std::string_view::npos)
            return found;
        text.remove_prefix(comma + 1);
    }
}

} // namespace

void setSweep(SweepParameters& sweep, std::string_view text) {
    constexpr double kHighest = kSampleRate / 2.0;
    constexpr double kFastest = 1e9;
    const std::vector<std::string_view> words = parts(text);
    if (words.size() < 3)
        refuse(text);
    const auto number = [&](std::size_t i, double most) {
        double value = 0;
        const char* const end = words[i].data() + words[i].size();
        const auto [stop, error] = std::from_chars(words[i].data(), end, value);
        if (error != std::errc() || stop != end || !(value >= 0.0 && value <= most))
            refuse(text);
        return value;
    };
    sweep.startFrequency = number(0, kHighest);
    sweep.endFrequency = number(1, kHighest);
    sweep.rate = number(2, kFastest);
    if (sweep.rate == 0.0)
        refuse(text);
    sweep.amplitudeLeft = sweep.amplitudeRight = 1.0;
    sweep.leftEnabled = sweep.rightEnabled = sweep.enabled = 1;
    sweep.restart = 1;
    for (std::size_t i = 3; i < words.size(); ++i) {
        if (words[i] == "log")
            sweep.log = 1;
        else if (words[i] == "reverse")
            sweep.reverse = 1;
        else if (words[i] == "once")
            sweep.startOneShot();
        else
            refuse(text);
    }
}

} // namespace sonotrace
