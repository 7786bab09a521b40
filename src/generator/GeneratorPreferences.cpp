#include "generator/GeneratorPreferences.h"

#include "widgets/Preferences.h"

#include <algorithm>
#include <utility>

namespace sonotrace {

namespace {

constexpr std::pair<const char*, double GeneratorSettings::*> kNumbers[] = {
    {"Freq", &GeneratorSettings::frequency},
    {"Phase", &GeneratorSettings::phase},
    {"VolL", &GeneratorSettings::volumeLeft},
    {"VolR", &GeneratorSettings::volumeRight}};
constexpr std::pair<const char*, std::int32_t GeneratorSettings::*> kChoices[] = {
    {"GenType", &GeneratorSettings::waveform}, {"Enabled", &GeneratorSettings::enabled}};

GeneratorSettings readSlot(const Preferences& preferences, int slot) {
    GeneratorSettings settings;
    for (const auto& [key, member] : kNumbers)
        settings.*member = preferences.floatValue(key + QString::number(slot));
    for (const auto& [key, member] : kChoices)
        settings.*member = preferences.integerValue(key + QString::number(slot));
    return settings;
}

/// Phase and the switch do not count: 0 is a usual value for both.
bool isUntouched(const GeneratorSettings& slot) {
    return slot.frequency == 0.0 && slot.volumeLeft == 0.0 && slot.volumeRight == 0.0 && slot.waveform == 0;
}

GeneratorSettings clamped(GeneratorSettings slot) {
    slot.frequency = std::clamp(slot.frequency, 1.0, 22000.0);
    slot.phase = std::clamp(slot.phase, -360.0, 360.0);
    slot.volumeLeft = std::clamp(slot.volumeLeft, 0.0, 1.0);
    slot.volumeRight = std::clamp(slot.volumeRight, 0.0, 1.0);
    slot.waveform = std::clamp(slot.waveform, 0, 7);
    slot.enabled = std::clamp(slot.enabled, 0, 1);
    return slot;
}

} // namespace

bool loadGeneratorBank(const Preferences& preferences, GeneratorBank& bank) {
    bool untouched = true;
    for (int slot = 0; slot < kGeneratorCount; ++slot) {
        const GeneratorSettings stored = readSlot(preferences, slot);
        untouched = untouched && isUntouched(stored);
        bank.slots[static_cast<std::size_t>(slot)].store(clamped(stored));
    }
    if (!untouched)
        return false;
    for (int slot = 0; slot < kGeneratorCount; ++slot) {
        GeneratorSlot& values = bank.slots[static_cast<std::size_t>(slot)];
        GeneratorSettings first = values.load();
        first.frequency = 1000.0 + 100.0 * slot;
        first.volumeLeft = 1.0;
        first.volumeRight = 1.0;
        first.waveform = 0;
        values.store(first);
    }
    return true;
}

void saveGeneratorSlot(Preferences& preferences, int slot, const GeneratorSettings& settings) {
    for (const auto& [key, member] : kNumbers)
        preferences.setFloat(key + QString::number(slot), settings.*member);
    for (const auto& [key, member] : kChoices)
        preferences.setInteger(key + QString::number(slot), settings.*member);
}

} // namespace sonotrace
