#include "app/GeneratorPreferences.h"

#include "app/Preferences.h"

#include <algorithm>

namespace sonotrace {

namespace {

QString slotKey(const char* name, int slot) {
    return QLatin1String(name) + QString::number(slot);
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

void writeFirstRunDefaults(Preferences& preferences) {
    preferences.setFloat("sweepStart", 20.0);
    preferences.setFloat("sweepEnd", 20000.0);
    preferences.setFloat("sweepRate", 90000.0);
    preferences.setFloat("sweepAmplitude", 100.0); // nobody reads it
    preferences.setFloat("spectrumStartFreq", 0.0);
    preferences.setFloat("spectrumEndFreq", 20000.0);
    preferences.setInteger("spectrumNumAvg", 1);
    preferences.setInteger("spectrumFillCheckbox", 0);
    preferences.setInteger("spectrumLogCheckbox", 0);
    preferences.setInteger("spectrumGridCheckbox", 1);
    preferences.setInteger("inputPopup", 0);
    preferences.setInteger("SPECTRUM_fftSizePopup", 8);
    preferences.setInteger("SPECTRUM_windowPopup", 1);
    preferences.setDouble("WATERFALL_soundInputVolume", 700.0);
    preferences.setFloat("waterfallStartingFreq", 0.0);
    preferences.setFloat("waterfallEndingFreq", 20000.0);
    preferences.setFloat("waterfallGain", 10.0);
    preferences.setInteger("waterfallSpeedup", 10);
    preferences.setFloat("waterfallReceiverkHz", 0.0);
    preferences.setInteger("fftSizeLog2", 13);
    preferences.setInteger("WATERFALL_inputPopup", 0);
    preferences.setInteger("WATERFALL_fftSizePopup", 7);
    preferences.setInteger("WATERFALL_windowPopup", 0);
    preferences.setDouble("soundInputVolume", 700.0);
}

} // namespace

void loadGeneratorBank(Preferences& preferences, GeneratorBank& bank) {
    bool untouched = true;
    for (int slot = 0; slot < kGeneratorCount; ++slot) {
        const GeneratorSettings stored = readSlot(preferences, slot);
        untouched = untouched && isUntouched(stored);
        bank.slots[static_cast<std::size_t>(slot)].store(clamped(stored));
    }
    if (!untouched)
        return;
    for (int slot = 0; slot < kGeneratorCount; ++slot) {
        GeneratorSlot& values = bank.slots[static_cast<std::size_t>(slot)];
        GeneratorSettings first = values.load();
        first.frequency = 1000.0 + 100.0 * slot;
        first.volumeLeft = 1.0;
        first.volumeRight = 1.0;
        first.waveform = 0;
        values.store(first);
    }
    writeFirstRunDefaults(preferences);
    preferences.synchronise();
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
