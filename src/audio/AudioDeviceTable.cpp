#include "audio/AudioDeviceTable.h"

#include "base/SystemLog.h"

#include <algorithm>

namespace sonotrace {

namespace {

constexpr std::size_t kLongestName = 1000; // bytes

std::int32_t firstChannels(const StreamConfiguration& streams) {
    return static_cast<std::int32_t>(streams->front());
}

std::vector<std::string> titles(std::int32_t count, const std::vector<std::string>& names,
                                const std::vector<std::int32_t>& channels) {
    std::vector<std::string> chosen;
    for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k) {
        if (channels[k] > 0)
            chosen.push_back(names[k]);
    }
    return chosen;
}

std::optional<std::size_t> deviceAt(std::int32_t count, const std::vector<std::int32_t>& map,
                                    int popupIndex) {
    if (popupIndex < 0 || static_cast<std::size_t>(popupIndex) >= map.size())
        return std::nullopt;
    const std::int32_t k = map[static_cast<std::size_t>(popupIndex)];
    return k < count ? std::optional(static_cast<std::size_t>(k)) : std::nullopt; // the maps only ever grow
}

std::optional<int> positionOf(const std::string& uid, const std::vector<std::int32_t>& map,
                              const std::vector<std::optional<std::string>>& uids) {
    const auto is = [&](std::int32_t k) { return uids[static_cast<std::size_t>(k)] == uid; };
    const auto found = std::ranges::find_if(map, is);
    return found == map.end() ? std::nullopt : std::optional(static_cast<int>(found - map.begin()));
}

} // namespace

void AudioDeviceTable::GetSoundDevices(SoundSystem& system, Variant variant) {
    systemLog("GetInputDevices");
    deviceCount = 0;
    std::uint32_t count = 0;
    if (system.deviceListSize(count) != kNoError) {
        systemLog("Can't get property info: kAudioHardwarePropertyDevices");
        return;
    }
    systemLog("numberOfDevices %d", static_cast<int>(count));
    systemLog("sizeof(AudioDeviceID) %d", static_cast<int>(sizeof(AudioDeviceID)));
    std::vector<DeviceDescription> devices;
    if (system.deviceList(devices) != kNoError) {
        systemLog("Can't get property: kAudioHardwarePropertyDevices");
        return;
    }
    deviceNames.clear();
    deviceIds.clear();
    deviceUids.clear();
    inputChannels.clear();
    outputChannels.clear();
    for (const DeviceDescription& device : devices)
        addDevice(device, variant);
}

void AudioDeviceTable::addDevice(const DeviceDescription& device, Variant variant) {
    const std::int32_t k = deviceCount;
    const std::string name = device.name.substr(0, kLongestName);
    systemLog("AudioDeviceID(%d) %d %s", k, static_cast<int>(device.id), name.c_str());
    deviceNames.push_back(name);
    deviceIds.push_back(device.id);
    const Status status = device.uid ? kNoError : kStatusUnavailable;
    if (variant == Variant::Spectrum) {
        // No platform of ours has data sources within a device: there is nothing to read, which always
        // succeeds.
        systemLog("kAudioDevicePropertyDataSources status %d %d ", k, kNoError);
        systemLog("kAudioDevicePropertyDataSources status %d %d ", k, kNoError);
        systemLog("kAudioDevicePropertyDeviceUID status %d %d ", k, status);
    }
    systemLog("DeviceUI(%d) %s", k, device.uid ? device.uid->c_str() : "(null)");
    deviceUids.push_back(device.uid);
    addOutputSide(k, device.outputStreams, variant);
    addInputSide(k, device.inputStreams);
    deviceCount = k + 1;
}

void AudioDeviceTable::addOutputSide(std::int32_t k, const StreamConfiguration& streams, Variant variant) {
    outputChannels.push_back(0);
    if (!streams)
        return;
    systemLog("OUTPUT AudioDeviceID(%d) mNumberBuffers %d", k, static_cast<int>(streams->size()));
    if (streams->empty())
        return;
    systemLog("OUTPUT AudioDeviceID(%d) status %d mNumberChannels %d", k, kNoError, firstChannels(streams));
    ++outputDeviceCount;
    if (variant != Variant::Generator)
        return;
    outputChannels.back() = firstChannels(streams);
    outputDeviceMap.push_back(k);
}

void AudioDeviceTable::addInputSide(std::int32_t k, const StreamConfiguration& streams) {
    inputChannels.push_back(0);
    if (!streams)
        return;
    systemLog("INPUT AudioDeviceID(%d) mNumberBuffers %d", k, static_cast<int>(streams->size()));
    if (streams->empty())
        return;
    systemLog("INPUT AudioDeviceID(%d) status %d mNumberChannels %d", k, kNoError, firstChannels(streams));
    inputChannels.back() = firstChannels(streams);
    inputDeviceMap.push_back(k);
    ++inputDeviceCount;
}

std::vector<std::string> AudioDeviceTable::inputTitles() const {
    return titles(deviceCount, deviceNames, inputChannels);
}

std::vector<std::string> AudioDeviceTable::outputTitles() const {
    return titles(deviceCount, deviceNames, outputChannels);
}

std::optional<std::size_t> AudioDeviceTable::inputDevice(int popupIndex) const {
    return deviceAt(deviceCount, inputDeviceMap, popupIndex);
}

std::optional<std::size_t> AudioDeviceTable::outputDevice(int popupIndex) const {
    return deviceAt(deviceCount, outputDeviceMap, popupIndex);
}

std::optional<int> AudioDeviceTable::inputPosition(const std::string& uid) const {
    return positionOf(uid, inputDeviceMap, deviceUids);
}

std::optional<int> AudioDeviceTable::outputPosition(const std::string& uid) const {
    return positionOf(uid, outputDeviceMap, deviceUids);
}

} // namespace sonotrace
