#pragma once

#include "batch/AudioFile.h"

namespace sonotrace {

class CommandLine;

/// The argument and the options of a subcommand that reads a sound file.
void addInputOptions(CommandLine& line);

/// The file that the user means, opened.
AudioFile openInput(const CommandLine& line);

} // namespace sonotrace
