#pragma once

#include "audio/AudioDeviceTable.h"
#include "platform/SoundSystem.h"

namespace sonotrace {

/// The recording volume of an input window's device, set in the device itself.
///
/// The device is the one at the pop-up's index in the table of all devices, not by way of the map of inputs.
/// The platform layer lists inputs first, which makes it the device that is recorded. Window thread.
class InputGain {
public:
    InputGain(SoundSystem& system, const AudioDeviceTable& devices) : system_(system), devices_(devices) {}

    /// Whether the device has a volume to set, and with it whether the slider is of use.
    bool SetInputGainSliderVisibility(int popupIndex);

    /// Writes the gain, 0 to 1, to the device's first two input channels. Failures are only logged.
    void SetInputGain(int popupIndex, float gain);

    /// The same without a word on the log, for a stream that has come back by itself. False when the device
    /// has a volume and does not take it yet.
    bool resend(int popupIndex, float gain);

    /// The UID of the device that the volume is of; empty where there is none.
    std::string uid(int popupIndex) const;

    /// The volume that the device has, without a word on the log; false where it has none.
    bool read(int popupIndex, float& volume) const;

    /// The device's input volume; 0 when it cannot be read.
    float NewGetVolumeScalar(AudioDeviceID device, std::uint32_t channel);

private:
    AudioDeviceID device(int popupIndex) const;

    SoundSystem& system_;
    const AudioDeviceTable& devices_;
};

} // namespace sonotrace
