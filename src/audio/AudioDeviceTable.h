#pragma once

#include "platform/SoundSystem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sonotrace {

/// One window's list of the machine's sound devices, built when the window is made, and the maps from
/// the positions of its pop-up to devices. Rows are indexed by the device's position k in the platform's
/// list. Window thread.
class AudioDeviceTable {
public:
    /// The windows' tables differ in what they keep of the outputs and in what they log.
    enum class Variant {
        Generator, ///< keeps the outputs
        Spectrum,  ///< only counts the outputs; logs the status of every read
        Input,     ///< only counts the outputs
    };

    std::int32_t deviceCount = 0;
    std::vector<std::string> deviceNames;
    std::vector<AudioDeviceID> deviceIds;
    std::vector<std::optional<std::string>> deviceUids;
    std::vector<std::int32_t> inputChannels;  ///< of the first stream; 0 without inputs
    std::vector<std::int32_t> outputChannels; ///< the same for outputs; generator window only
    std::vector<std::int32_t> inputDeviceMap;
    std::vector<std::int32_t> outputDeviceMap; ///< generator window only
    std::int32_t inputDeviceCount = 0;
    std::int32_t outputDeviceCount = 0;

    /// Enumerates the devices of `system`. A list that cannot be read leaves the table empty.
    void GetSoundDevices(SoundSystem& system, Variant variant);

    /// Names of the devices with inputs (outputs), in device order: the items of the pop-up.
    std::vector<std::string> inputTitles() const;
    std::vector<std::string> outputTitles() const;

    /// Device index for position `popupIndex` of the pop-up; nothing when there is no such position, as with
    /// an empty pop-up's -1.
    std::optional<std::size_t> inputDevice(int popupIndex) const;
    std::optional<std::size_t> outputDevice(int popupIndex) const;

    /// The other way round: the position of the device whose UID is `uid`.
    std::optional<int> inputPosition(const std::string& uid) const;
    std::optional<int> outputPosition(const std::string& uid) const;

    /// UID of device `k`, empty when it has none.
    std::string uid(std::size_t k) const { return deviceUids[k].value_or(std::string()); }

private:
    void addDevice(const DeviceDescription& device, Variant variant);
    void addOutputSide(std::int32_t k, const StreamConfiguration& streams, Variant variant);
    void addInputSide(std::int32_t k, const StreamConfiguration& streams);
};

} // namespace sonotrace
