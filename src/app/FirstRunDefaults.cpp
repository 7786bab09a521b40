#include "app/FirstRunDefaults.h"

#include "widgets/Preferences.h"

namespace sonotrace {

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
    preferences.synchronise();
}

} // namespace sonotrace
