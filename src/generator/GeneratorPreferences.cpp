#include "generator/GeneratorPreferences.h"

#include "widgets/Preferences.h"

#include <algorithm>

namespace sonotrace {

namespace {

QString slotKey(const char* name, int slot) {
    return name + QString::number(slot);
}

GeneratorSettings readSlot(const Preferences& preferences, int slot) {
    return {.frequency = preferences.floatValue(slotKey("Freq", slot)),
            .phase = preferences.floatValue(slotKey("Phase", slot)),
            .volumeLeft = preferences.floatValue(slotKey("VolL", slot)),
            .volumeRight = preferences.floatValue(slotKey("VolR", slot)),
            .waveform = preferences.integerValue(slotKey("GenType", slot)),
            .enabled = preferences.integerValue(slotKey("Enabled", slot))};
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
    preferences.setFloat(slotKey("Freq", slot), settings.frequency);
    preferences.setFloat(slotKey("Phase", slot), settings.phase);
    preferences.setFloat(slotKey("VolL", slot), settings.volumeLeft);
    preferences.setFloat(slotKey("VolR", slot), settings.volumeRight);
    preferences.setInteger(slotKey("GenType", slot), settings.waveform);
    preferences.setInteger(slotKey("Enabled", slot), settings.enabled);
}

} // namespace sonotrace
