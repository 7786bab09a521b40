#pragma once

#include "generator/GeneratorBank.h"

namespace sonotrace {

class Preferences;

/// Fills the bank from the preferences, clamped. Where they hold nothing of a bank yet, which makes this a
/// first run, the bank gets the first-run values (1000, 1100, ... 2200 Hz at full volume). True on a first
/// run.
bool loadGeneratorBank(const Preferences& preferences, GeneratorBank& bank);

/// Writes one slot's settings.
void saveGeneratorSlot(Preferences& preferences, int slot, const GeneratorSettings& settings);

} // namespace sonotrace
