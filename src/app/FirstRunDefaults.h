#pragma once

namespace sonotrace {

class Preferences;

/// Writes what the tool windows are to find when they are opened for the first time.
void writeFirstRunDefaults(Preferences& preferences);

} // namespace sonotrace
