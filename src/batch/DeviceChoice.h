#pragma once

#include "platform/SoundSystem.h"
#include "platform/SoundSystemChoice.h"

#include <QString>

#include <string>

namespace sonotrace {

class CommandLine;

/// "--audio SYSTEM", and what it says. Throws a CommandError for a word that is none of them.
void addAudioOption(CommandLine& line, const QString& without);
SoundSystemChoice audioChoice(const CommandLine& line);

/// A device that a subcommand plays on or listens to.
struct ChosenByName {
    std::string uid;  ///< empty: the server's default
    std::string name; ///< for people
};

/// Finds the device that the user means: by its UID, its name, or a part of either that no other device has,
/// whatever the letters' case. An empty text is the default device. Throws a CommandError that lists what
/// there is.
ChosenByName chooseInput(SoundSystem& system, const QString& text);
ChosenByName chooseOutput(SoundSystem& system, const QString& text);

} // namespace sonotrace
