#pragma once

#include "platform/SoundSystemChoice.h"

#include <QString>

#include <optional>

namespace sonotrace {

/// What the command line asks for.
struct Arguments {
    SoundSystemChoice audio = SoundSystemChoice::Automatic;
    QString pictures; ///< the folder of a picture tour; empty for an ordinary run
    QString settings; ///< the settings file to open at the start, or empty
};

/// Reads the command line before there is a display to connect to, so that it works in a plain shell as well.
/// Answers --help and --version itself. Nothing when the program is to end at once with `status`.
std::optional<Arguments> readArguments(int argc, char** argv, int& status);

} // namespace sonotrace
