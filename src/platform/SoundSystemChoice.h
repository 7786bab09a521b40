#pragma once

#include "platform/SoundSystem.h"

#include <memory>
#include <optional>
#include <string_view>

namespace sonotrace {

enum class SoundSystemChoice {
    Automatic, ///< the sound server if it answers, else the built-in loopback
    Pulse,     ///< the sound server, waited for when it is not there yet
    Loopback,
};

/// Reads the value of the command line's --audio; empty is Automatic, an unknown word is nothing.
std::optional<SoundSystemChoice> soundSystemChoice(std::string_view word);

std::unique_ptr<SoundSystem> openSoundSystem(SoundSystemChoice choice);

} // namespace sonotrace
