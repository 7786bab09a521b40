#pragma once

#include "base/Numbers.h"

#include <array>
#include <cstdint>

namespace sonotrace {

/// How a stereo signal becomes the one that is analysed; position in the windows' menu.
enum class ChannelFold : std::int32_t { Sum, Left, Right, Difference };

inline constexpr std::array<const char*, 4> kChannelFoldTitles = {"Left + Right", "Left", "Right",
                                                                  "Left - Right"};

/// Sum and difference are not halved and wrap around, as 16-bit samples do.
constexpr std::int16_t foldSamples(ChannelFold fold, std::int16_t left, std::int16_t right) {
    switch (fold) {
    case ChannelFold::Left:
        return left;
    case ChannelFold::Right:
        return right;
    case ChannelFold::Difference:
        return wrapToSample(left - right);
    case ChannelFold::Sum:
        break;
    }
    return addSamples(left, right);
}

} // namespace sonotrace
