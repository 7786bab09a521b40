#pragma once

#include <optional>
#include <string>

namespace sonotrace {

/// Runs the subcommand that the first argument names, without windows and without an application object
/// before or after. Gives the exit status, or nothing where the first argument is no subcommand.
std::optional<int> runSubcommand(int argc, char** argv);

/// A line for each subcommand: its name and what it does.
std::string listSubcommands();

} // namespace sonotrace
