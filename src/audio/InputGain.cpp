#include "audio/InputGain.h"

#include "base/SystemLog.h"

namespace sonotrace {

AudioDeviceID InputGain::device(int popupIndex) const {
    const bool exists = popupIndex >= 0 && static_cast<std::size_t>(popupIndex) < devices_.deviceIds.size();
    return exists ? devices_.deviceIds[static_cast<std::size_t>(popupIndex)] : 0;
}

bool InputGain::SetInputGainSliderVisibility(int popupIndex) {
    const bool has = system_.hasInputVolume(device(popupIndex), 1);
    systemLog(has ? "AudioObjectHasProperty YES making slider visible"
                  : "AudioObjectHasProperty NO making slider invisible");
    return has;
}

void InputGain::SetInputGain(int popupIndex, float gain) {
    const AudioDeviceID id = device(popupIndex);
    systemLog(system_.hasInputVolume(id, 1) ? "AudioObjectHasProperty YES" : "AudioObjectHasProperty NO");
    for (const std::uint32_t channel : {1U, 2U}) {
        const Status status = system_.setInputVolume(id, channel, gain);
        systemLog("%d AudioObjectSetPropertyData %d", static_cast<int>(id), status);
    }
}

std::string InputGain::uid(int popupIndex) const {
    return device(popupIndex) == 0 ? std::string() : devices_.uid(static_cast<std::size_t>(popupIndex));
}

bool InputGain::read(int popupIndex, float& volume) const {
    return system_.getInputVolume(device(popupIndex), 1, volume) == kNoError;
}

bool InputGain::resend(int popupIndex, float gain) {
    const AudioDeviceID id = device(popupIndex);
    if (!system_.hasInputVolume(id, 1))
        return true;
    system_.setInputVolume(id, 2, gain); // there may be no second channel
    return system_.setInputVolume(id, 1, gain) == kNoError;
}

float InputGain::NewGetVolumeScalar(AudioDeviceID device, std::uint32_t channel) {
    systemLog(system_.hasInputVolume(device, channel) ? "AudioObjectHasProperty YES"
                                                      : "AudioObjectHasProperty NO");
    float volume = 0.0F;
    const Status status = system_.getInputVolume(device, channel, volume);
    systemLog("NewGetVolumeScalar: %d", status);
    return status == kNoError ? volume : 0.0F;
}

} // namespace sonotrace
