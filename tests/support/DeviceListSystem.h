#pragma once

#include "platform/loopback/LoopbackSystem.h"

#include <string>
#include <vector>

namespace sonotrace {

/// A loopback whose device list is the test's.
class DeviceListSystem : public LoopbackSystem {
public:
    explicit DeviceListSystem(std::vector<DeviceDescription> devices, Status status = kNoError)
        : LoopbackSystem(Clock::Manual), devices_(std::move(devices)), status_(status) {}

    Status deviceListSize(std::uint32_t& count) override {
        count = static_cast<std::uint32_t>(devices_.size());
        return status_;
    }
    Status deviceList(std::vector<DeviceDescription>& devices) override {
        devices = devices_;
        return status_;
    }

    void setDevices(std::vector<DeviceDescription> devices) { devices_ = std::move(devices); }

private:
    std::vector<DeviceDescription> devices_;
    const Status status_;
};

/// A device with one stream of `outputs` and one of `inputs` channels; 0 is no stream.
inline DeviceDescription device(AudioDeviceID id, const std::string& name, std::uint32_t outputs,
                                std::uint32_t inputs) {
    DeviceDescription description{
        .id = id, .name = name, .uid = "uid-" + name, .outputStreams = {}, .inputStreams = {}};
    description.outputStreams.emplace(outputs > 0 ? 1 : 0, outputs);
    description.inputStreams.emplace(inputs > 0 ? 1 : 0, inputs);
    return description;
}

} // namespace sonotrace
