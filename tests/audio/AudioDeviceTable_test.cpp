#include "audio/AudioDeviceTable.h"

#include "support/DeviceListSystem.h"

#include <gtest/gtest.h>

#include <string>

namespace sonotrace {
namespace {

AudioDeviceTable table(std::vector<DeviceDescription> devices, AudioDeviceTable::Variant variant) {
    DeviceListSystem system(std::move(devices));
    AudioDeviceTable built;
    built.GetSoundDevices(system, variant);
    return built;
}

TEST(AudioDeviceTable, MapsPopUpPositionsPastDevicesOfTheOtherDirection) {
    const auto inputs =
        table({device(7, "Speaker", 2, 0), device(9, "Microphone", 0, 1), device(4, "Interface", 8, 4)},
              AudioDeviceTable::Variant::Input);
    EXPECT_EQ(inputs.inputTitles(), (std::vector<std::string>{"Microphone", "Interface"}));
    ASSERT_TRUE(inputs.inputDevice(0));
    EXPECT_EQ(inputs.uid(*inputs.inputDevice(0)), "uid-Microphone");
    EXPECT_EQ(inputs.inputChannels, (std::vector<std::int32_t>{0, 1, 4}));
    EXPECT_EQ(inputs.outputDeviceCount, 2);
    EXPECT_TRUE(inputs.outputDeviceMap.empty());

    testing::internal::CaptureStderr();
    const auto outputs =
        table({device(9, "Microphone", 0, 1), device(7, "Speaker", 2, 0), device(4, "Interface", 8, 4)},
              AudioDeviceTable::Variant::Generator);
    EXPECT_EQ(outputs.outputTitles(), (std::vector<std::string>{"Speaker", "Interface"}));
    EXPECT_EQ(outputs.uid(*outputs.outputDevice(1)), "uid-Interface");
    EXPECT_EQ(outputs.inputDeviceCount, 2);
    const std::string log = testing::internal::GetCapturedStderr();
    for (const char* line : {"AudioDeviceID(0) 9 Microphone\n", "DeviceUI(0) uid-Microphone\n",
                             "OUTPUT AudioDeviceID(2) status 0 mNumberChannels 8\n",
                             "INPUT AudioDeviceID(2) status 0 mNumberChannels 4\n"})
        EXPECT_NE(log.find(line), std::string::npos) << line << log;
}

TEST(AudioDeviceTable, AnswersNoPositionThatIsNotThere) {
    const auto empty = table({}, AudioDeviceTable::Variant::Input);
    for (const int index : {-1, 0, 1, 1 << 30})
        EXPECT_FALSE(empty.inputDevice(index)) << index;
    const auto one = table({device(1, "Microphone", 0, 2)}, AudioDeviceTable::Variant::Generator);
    EXPECT_TRUE(one.inputDevice(0));
    EXPECT_FALSE(one.inputDevice(1));
    EXPECT_FALSE(one.outputDevice(0));
}

TEST(AudioDeviceTable, TakesOddDevicesAsTheyCome) {
    DeviceDescription nameless = device(1, "", 0, 2);
    nameless.uid.reset();
    DeviceDescription silent = device(2, "Silent first stream", 2, 2);
    silent.inputStreams = {{0, 8}};
    DeviceDescription mute = device(3, "Cannot say", 2, 2);
    mute.inputStreams.reset();
    std::vector<DeviceDescription> devices{nameless, silent, mute, device(4, std::string(5000, 'n'), 0, 2)};
    for (AudioDeviceID id = 5; id <= 40; ++id)
        devices.push_back(device(id, "Input " + std::to_string(id), 0, 1));
    const auto built = table(devices, AudioDeviceTable::Variant::Spectrum);
    EXPECT_EQ(built.deviceCount, 40);
    EXPECT_EQ(built.uid(0), "");
    EXPECT_EQ(built.deviceNames[3].size(), 1000U);
    // A first stream without channels counts as no input, whatever its later streams have.
    EXPECT_EQ(built.inputTitles().size(), 38U);
    EXPECT_EQ(built.inputChannels[1], 0);
    EXPECT_EQ(built.inputChannels[2], 0);
}

TEST(AudioDeviceTable, StaysEmptyWhenTheListCannotBeRead) {
    DeviceListSystem system({device(1, "Microphone", 0, 2)}, kStatusTimeout);
    AudioDeviceTable built;
    testing::internal::CaptureStderr();
    built.GetSoundDevices(system, AudioDeviceTable::Variant::Input);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "GetInputDevices\nCan't get property info: kAudioHardwarePropertyDevices\n");
    EXPECT_EQ(built.deviceCount, 0);
}

} // namespace
} // namespace sonotrace
