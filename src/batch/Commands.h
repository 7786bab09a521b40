#pragma once

namespace sonotrace {

/// The subcommands. `argv[1]` is the name of the subcommand. They give the exit status or throw a
/// CommandError.
int runDevices(int argc, char** argv);
int runMeasure(int argc, char** argv);
int runRender(int argc, char** argv);
int runScope(int argc, char** argv);
int runSpectrum(int argc, char** argv);
int runWaterfall(int argc, char** argv);

} // namespace sonotrace
