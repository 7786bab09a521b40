#include "platform/pulse/PulseSoundSystem.h"

#include "support/PrivateServer.h"
#include "support/Streams.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <thread>
#include <utility>

namespace sonotrace {
namespace {

using namespace std::chrono_literals;

std::ptrdiff_t threads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

class PulseTest : public testing::Test {
protected:
    PulseTest() { EXPECT_TRUE(system_.connected(10s)); }

    PrivateServer server_;
    PulseSoundSystem system_;
};

TEST_F(PulseTest, ListsInputsFirstAndTheDefaultsBeforeTheOthers) {
    server_.pactl("set-default-source line.monitor");
    server_.pactl("set-default-sink line");
    std::vector<DeviceDescription> devices;
    const auto uids = [&] {
        system_.deviceList(devices);
        std::vector<std::string> names;
        for (const DeviceDescription& device : devices)
            names.push_back(*device.uid);
        return names;
    };
    const std::vector<std::string> expected{"line.monitor", "speaker.monitor", "line", "speaker"};
    EXPECT_TRUE(waitFor([&] { return uids() == expected; })) << testing::PrintToString(uids());
    EXPECT_EQ(devices[0].name, "Monitor of <b>line</b>");
    EXPECT_EQ(*devices[0].inputStreams, std::vector<std::uint32_t>{2});
    EXPECT_TRUE(devices[0].outputStreams->empty());
    const AudioDeviceID line = devices[0].id;
    server_.pactl("set-default-source speaker.monitor");
    EXPECT_TRUE(waitFor([&] { return uids()[0] == "speaker.monitor"; }));
    EXPECT_EQ(devices[1].id, line) << "ids stay";
    EXPECT_EQ(system_.name(), "PulseAudio");
}

TEST_F(PulseTest, DoesNotWaitForTheCallbackOfAnotherStream) {
    expectNobodyWaitsForACallback(system_, "speaker.monitor", [] {});
}

TEST_F(PulseTest, SetsTheVolumeOfOneInputChannelAsAMixerShowsIt) {
    std::vector<DeviceDescription> devices;
    system_.deviceList(devices);
    const AudioDeviceID monitor = devices[0].id;
    EXPECT_EQ(system_.setInputVolume(monitor, 1, 0.5F), kNoError);
    EXPECT_EQ(system_.setInputVolume(monitor, 2, 0.25F), kNoError);
    const auto mixer = [this] { return server_.pactl("get-source-volume speaker.monitor"); };
    EXPECT_TRUE(waitFor([&] {
        return mixer().find("front-left: 32768 /  50%") != std::string::npos &&
               mixer().find("front-right: 16384 /  25%") != std::string::npos;
    })) << mixer();
    float volume = 0;
    EXPECT_EQ(system_.getInputVolume(monitor, 2, volume), kNoError);
    EXPECT_EQ(volume, 0.25F);
    EXPECT_EQ(system_.restoreInputVolumes(), kNoError);
    EXPECT_NE(mixer().find("100% / 0.00 dB,   front-right: 65536 / 100%"), std::string::npos) << mixer();
    EXPECT_FALSE(system_.hasInputVolume(devices[3].id, 1)) << "a sink's";
}

TEST_F(PulseTest, WhatIsPlayedArrivesToTheBitThoughTheWindowThreadStallsMeanwhile) {
    ManualRunLoop windowThread;
    Streams streams(system_);
    ASSERT_TRUE(streams.loop(&windowThread));
    const auto turnUntil = [&](std::size_t samples) {
        return waitFor([&] {
            windowThread.turn();
            return streams.heardSamples() >= samples;
        });
    };
    ASSERT_TRUE(turnUntil(100000));
    std::this_thread::sleep_for(1s); // a quarter of it after the last buffer was filled
    ASSERT_TRUE(turnUntil(240000));
    EXPECT_TRUE(streams.heardEveryNote());
    EXPECT_EQ(streams.input->state().underruns + streams.output->state().underruns, 0U);
    EXPECT_TRUE(waitFor([&] { return streams.input->state().underruns == 1; })) << "this stall is too long";
    const std::size_t heard = streams.heardSamples();
    ASSERT_GT(windowThread.waiting(), 0);
    streams.input->stop();
    windowThread.turn();
    EXPECT_EQ(streams.heardSamples(), heard) << "no callback runs after the stop, posted ones included";
}

TEST_F(PulseTest, TwoBuffersAreInStoreWhenTheNextIsRendered) {
    Streams streams(system_);
    ASSERT_TRUE(streams.loop(nullptr, 441));
    ASSERT_TRUE(waitFor([&] { return streams.filled > 5; }));
    for (int i = 0; i < 8; ++i) {
        std::this_thread::sleep_for(61ms); // another place between two renderings every time
        server_.freeze();
        std::size_t before = 0;
        EXPECT_TRUE(waitFor([&] {
            std::this_thread::sleep_for(20ms);
            return std::exchange(before, streams.heardSamples()) == streams.heardSamples();
        }));
        // The sink takes a little ahead of time; up to a fragment and a buffer are not heard yet.
        const std::size_t inFlight = streams.played - (streams.heardSamples() - streams.beginning());
        EXPECT_GE(inFlight, std::size_t{2} * (2 * 5000 - 500));
        EXPECT_LE(inFlight, std::size_t{2} * (3 * 5000 + 1102 + 441));
        server_.thaw();
    }
}

TEST_F(PulseTest, AVolumeThatTheServerRemembersOfEarlierStreamsDoesNotTouchTheSamples) {
    server_.pactl("load-module module-stream-restore");
    {
        Streams streams(system_);
        ASSERT_TRUE(streams.loop());
        for (const std::string kind : {"source-output", "sink-input"}) {
            server_.pactl("set-" + kind + "-volume $(pactl list short " + kind + "s | cut -f1) 50%");
        }
    }
    Streams streams(system_);
    ASSERT_TRUE(streams.loop());
    EXPECT_TRUE(waitFor([&] { return streams.heardEveryNote(); }));
}

TEST_F(PulseTest, ADeviceThatGoesAwayOrIsNotThereIsSaid) {
    Streams streams(system_);
    streams.play("line");
    streams.listen("no such device");
    ASSERT_TRUE(waitFor([&] { return streams.running(streams.output) && streams.running(streams.input); }));
    EXPECT_TRUE(streams.input->state().moved) << "the default source instead";
    server_.pactl("unload-module $(pactl list short modules | grep sink_name=line | cut -f1)");
    EXPECT_TRUE(waitFor([&] { return streams.output->state().moved; }));
    EXPECT_EQ(streams.output->state().deviceName, "<b>speaker</b>");
    const int filled = streams.filled;
    EXPECT_TRUE(waitFor([&] { return streams.filled > filled + 3; })) << "it plays on";
    server_.pactl("load-module module-null-sink sink_name=line");
    EXPECT_TRUE(waitFor([&] { return !streams.output->state().moved; })) << "it goes back by itself";
    server_.pactl("unload-module module-rescue-streams");
    server_.pactl("unload-module module-null-sink");
    EXPECT_TRUE(waitFor([&] { return streams.output->state().phase == QueueState::Phase::DeviceLost; }));
    server_.pactl("load-module module-null-sink sink_name=line");
    EXPECT_TRUE(waitFor([&] { return streams.running(streams.output); })) << "plugged in again";
}

TEST_F(PulseTest, AServerThatComesBackIsTakenUpAgain) {
    Streams streams(system_);
    ASSERT_TRUE(streams.loop());
    const auto before = threads();
    for (int i = 0; i < 2; ++i) {
        server_.stop();
        EXPECT_TRUE(waitFor([&] { return streams.output->state().phase == QueueState::Phase::Waiting; }));
        server_.start();
        const int filled = streams.filled;
        const std::size_t heard = streams.heardSamples();
        EXPECT_TRUE(waitFor([&] { return streams.filled > filled && streams.heardSamples() > heard; }));
    }
    EXPECT_EQ(threads(), before);
}

TEST(PulseHang, AServerThatHangsHoldsNobodyUp) {
    PrivateServer server;
    auto system = std::make_unique<PulseSoundSystem>();
    ASSERT_TRUE(system->connected(10s));
    auto streams = std::make_unique<Streams>(*system);
    ASSERT_TRUE(streams->loop());
    const auto before = threads();
    server.freeze();
    const auto phase = [&] { return streams->output->state().phase; };
    EXPECT_TRUE(waitFor([&] { return phase() == QueueState::Phase::Waiting; }));
    server.thaw();
    EXPECT_TRUE(waitFor([&] { return phase() == QueueState::Phase::Running; }));
    server.freeze();
    const auto begin = std::chrono::steady_clock::now();
    std::vector<DeviceDescription> devices;
    EXPECT_EQ(system->deviceList(devices), kNoError);
    EXPECT_EQ(system->setInputVolume(devices[0].id, 1, 0.5F), kNoError);
    EXPECT_EQ(system->restoreInputVolumes(), kStatusTimeout);
    streams->output->stop();
    streams->play("line");
    streams.reset();
    system.reset();
    // Generous: a call that waited for the server would wait for ever.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
    EXPECT_LT(threads(), before);
    server.thaw();
}

TEST(PipeWire, WhatIsPlayedArrivesToTheBit) {
    const PrivateServer server(PrivateServer::Kind::PipeWire);
    PulseSoundSystem system;
    ASSERT_TRUE(system.connected(10s));
    EXPECT_EQ(system.name(), "PipeWire");
    Streams streams(system);
    streams.listen("line.monitor");
    ASSERT_TRUE(waitFor([&] { return streams.running(streams.input) && streams.heardSamples() > 0; }));
    streams.play("line");
    ASSERT_TRUE(waitFor([&] { return streams.heardSamples() >= 300000; }, 20));
    EXPECT_TRUE(streams.heardEveryNote());
    EXPECT_FALSE(streams.output->state().moved || streams.input->state().moved);
    server.pactl("unload-module $(pactl list short modules | grep sink_name=line | cut -f1)");
    EXPECT_TRUE(waitFor([&] { return streams.output->state().moved && streams.input->state().moved; }));
}

} // namespace
} // namespace sonotrace
