#pragma once

#include "generator/GeneratorBank.h"

namespace sonotrace {

class Preferences;

/// Fills the bank from the preferences, clamped. Where they hold nothing of a bank yet, the bank gets the
/// first-run values (1000, 1100, ... 2200 Hz at full volume) and the first-run defaults of the other windows
/// are written.
void loadGeneratorBank(Preferences& preferences, GeneratorBank& bank);

/// Writes one slot's settings.
void saveGeneratorSlot(Preferences& preferences, int slot, const GeneratorSettings& settings);

} // namespace sonotrace
