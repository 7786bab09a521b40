#include "audio/AudioDeviceTable.h"

#include "support/DeviceListSystem.h"

#include <gtest/gtest.h>

#include <string>

namespace sonotrace {
namespace {

using Variant = AudioDeviceTable::Variant;

AudioDeviceTable table(std::vector<DeviceDescription> devices, Variant variant, Status status = kNoError) {
    DeviceListSystem system(std::move(devices), status);
    AudioDeviceTable built;
    built.GetSoundDevices(system, variant);
    return built;
}

TEST(AudioDeviceTable, MapsPopUpPositionsPastDevicesOfTheOtherDirection) {
    const std::vector<DeviceDescription> devices{device(7, "Speaker", 2, 0), device(9, "Microphone", 0, 1),
                                                 device(4, "Interface", 8, 4)};
    testing::internal::CaptureStderr();
    const auto inputs = table(devices, Variant::Input);
    EXPECT_EQ(inputs.inputTitles(), (std::vector<std::string>{"Microphone", "Interface"}));
    EXPECT_EQ(inputs.uid(inputs.inputDevice(0).value()), "uid-Microphone");
    EXPECT_EQ(inputs.inputChannels, (std::vector<std::int32_t>{0, 1, 4}));
    const auto outputs = table(devices, Variant::Generator);
    EXPECT_EQ(outputs.outputTitles(), (std::vector<std::string>{"Speaker", "Interface"}));
    EXPECT_EQ(outputs.uid(outputs.outputDevice(1).value()), "uid-Interface");
    EXPECT_FALSE(outputs.outputDevice(-1) || outputs.outputDevice(2));
    EXPECT_NE(
        testing::internal::GetCapturedStderr().find("INPUT AudioDeviceID(2) status 0 mNumberChannels 4\n"),
        std::string::npos);
}

TEST(AudioDeviceTable, TakesOddDevicesAsTheyCome) {
    DeviceDescription nameless = device(1, "", 0, 2);
    nameless.uid.reset();
    DeviceDescription silent = device(2, "Silent first stream", 2, 2);
    silent.inputStreams = {{0, 8}}; // counts as no input, whatever its later streams have
    DeviceDescription mute = device(3, std::string(5000, 'n'), 0, 2);
    mute.outputStreams.reset();
    const auto built = table({nameless, silent, mute}, Variant::Spectrum);
    EXPECT_EQ(built.uid(0), "");
    EXPECT_EQ(built.inputTitles(), (std::vector{std::string(), std::string(1000, 'n')}));
}

TEST(AudioDeviceTable, StaysEmptyWhenTheListCannotBeRead) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(table({device(1, "Microphone", 0, 2)}, Variant::Input, kStatusTimeout).deviceCount, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "GetInputDevices\nCan't get property info: kAudioHardwarePropertyDevices\n");
}

} // namespace
} // namespace sonotrace
