#include "batch/ChannelOption.h"

#include "base/Numbers.h"
#include "batch/CommandLine.h"
#include "batch/StandardStreams.h"

#include <array>
#include <string>

namespace sonotrace {

namespace {
constexpr std::array<const char*, 4> kNames = {"sum", "left", "right", "difference"}; // as ChannelFold
}

void addChannelOption(CommandLine& line) {
    line.addOption({"channel"}, "NAME", listedChoices(kNames) + " (left + right, left - right).", "left");
}

ChannelFold channelOf(const CommandLine& line) {
    return static_cast<ChannelFold>(line.choice("channel", kNames));
}

const char* channelName(ChannelFold channel) {
    return kNames[static_cast<std::size_t>(channel)];
}

std::uint64_t wrappedFrames(std::span<const std::int16_t> interleaved, ChannelFold channel) {
    if (channel == ChannelFold::Left || channel == ChannelFold::Right)
        return 0;
    const std::int32_t sign = channel == ChannelFold::Difference ? -1 : 1;
    std::uint64_t wrapped = 0;
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        const std::int32_t folded = interleaved[i] + sign * interleaved[i + 1];
        wrapped += folded != wrapToSample(folded) ? 1U : 0U;
    }
    return wrapped;
}

void warnIfWrapped(std::uint64_t frames, ChannelFold channel, const char* window) {
    if (frames > 0)
        warn(std::string("the ") + channelName(channel) + " of the channels is beyond 16 bits in " +
             std::to_string(frames) + " samples, and wraps around as in the " + window + "'s window");
}

} // namespace sonotrace
