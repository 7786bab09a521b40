#pragma once

#include "base/ChannelFold.h"

#include <cstdint>
#include <span>

namespace sonotrace {

class CommandLine;

/// "--channel NAME": what of the two channels is analysed, the left one unless it is given.
void addChannelOption(CommandLine& line);
ChannelFold channelOf(const CommandLine& line);

/// The name as it is typed: "sum".
const char* channelName(ChannelFold channel);

/// Frames of interleaved stereo whose sum or difference is beyond 16 bits.
std::uint64_t wrappedFrames(std::span<const std::int16_t> interleaved, ChannelFold channel);

/// Says so, if there are any; `window` is the one that wraps them as well.
void warnIfWrapped(std::uint64_t frames, ChannelFold channel, const char* window);

} // namespace sonotrace
