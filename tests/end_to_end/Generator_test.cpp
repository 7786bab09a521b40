#include "app/WindowControl.h"
#include "end_to_end/EndToEnd.h"
#include "support/ToolWindow.h"

#include <QAction>
#include <QMainWindow>

#include <gtest/gtest.h>

#include <cstring>

namespace sonotrace {
namespace {

using namespace std::chrono_literals;

class GeneratorEndToEnd : public OnEachServer {};

constexpr const char* kSeveralVoices = "Freq0=997\nVolL0=1\nVolR0=0.5\nEnabled0=1\n"
                                       "Freq1=333\nVolL1=1\nGenType1=2\nEnabled1=1\n"
                                       "Freq2=50\nVolR2=1\nGenType2=5\nEnabled2=1\n"
                                       "Freq3=50\nVolR3=1\nGenType3=7\nEnabled3=1\n";

void setSeveralVoices(RenderBench& bench) {
    bench.set(0, {997, 0, 1, 0.5, 0, 1});
    bench.set(1, {333, 0, 1, 0, 2, 1});
    bench.set(2, {50, 0, 0, 1, 5, 1});
    bench.set(3, {50, 0, 0, 1, 7, 1});
}

TEST_P(GeneratorEndToEnd, WhatTheSinkGetsIsWhatIsRenderedAndTheBankIsStoredOnTerm) {
    writePreferences(kSeveralVoices);
    const Monitor monitor("speaker.monitor", path("heard"));
    ASSERT_TRUE(waitFor([&] { return !monitor.heard().empty(); }));
    Program program({"--audio", "pulse"});
    ASSERT_TRUE(waitFor([&] { return monitor.soundingFrames() > 120000; }, 20));
    EXPECT_TRUE(program.quit());
    RenderBench bench;
    setSeveralVoices(bench);
    EXPECT_GT(longestMatch(bench.render(40), monitor.heard()), std::size_t{2} * 110000);
    const QByteArray log = program.output();
    EXPECT_TRUE(log.contains("Output underruns: 0\n"));
    EXPECT_TRUE(log.contains("applicationWillTerminate\n"));
    const Preferences stored;
    EXPECT_EQ(stored.floatValue("Freq1"), 333.0F);
    EXPECT_EQ(stored.integerValue("GenType2"), 5);
    EXPECT_EQ(stored.integerValue("Enabled3"), 1);
    EXPECT_EQ(stored.integerValue("Enabled4"), 0);
    EXPECT_EQ(stored.floatValue("Freq12"), 1.0F) << "clamped when it was loaded";
}

TEST_P(GeneratorEndToEnd, RecordingsFromTheMenuAreWhatIsHeard) {
    writePreferences(kSeveralVoices);
    const Monitor monitor("speaker.monitor", path("heard"));
    PulseSoundSystem system;
    ASSERT_TRUE(system.connected(10s));
    Preferences preferences;
    WindowControl control(system, preferences);
    control.awakeFromNib();
    const auto record = [&](const QString& file, int milliseconds) {
        answerFilePanel(file);
        control.window().findChild<QAction*>("doRecordingFileMenu")->trigger();
        QTest::qWait(milliseconds);
        control.window().findChild<QAction*>("doStopRecordingFileMenu")->trigger();
        QFile written(file);
        EXPECT_TRUE(written.open(QIODevice::ReadOnly));
        return written.readAll();
    };
    const auto headerBytes = [](const QByteArray& file) {
        std::uint32_t bytes = 0;
        std::memcpy(&bytes, file.constData() + 40, 4);
        return bytes;
    };
    // A null sink that was just made has two seconds of silence in store.
    ASSERT_TRUE(QTest::qWaitFor([&] { return monitor.soundingFrames() > 1000; }, 10000));
    const QByteArray first = record(path("first.wav"), 2000);
    const QByteArray second = record(path("second.wav"), 1000);
    EXPECT_GT(first.size(), 300000);
    EXPECT_EQ(headerBytes(first), first.size() - 44);
    EXPECT_EQ(headerBytes(second), first.size() + second.size() - 88) << "the second counts the first";
    QTest::qWait(1000); // what is recorded last is still on its way to the sink
    const auto heard = monitor.heard();
    for (const QByteArray& recording : {first, second}) {
        std::vector<std::int16_t> samples(static_cast<std::size_t>(recording.size() - 44) / 2);
        std::memcpy(samples.data(), recording.constData() + 44, samples.size() * 2);
        EXPECT_EQ(longestMatch(samples, heard), samples.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Servers, GeneratorEndToEnd, kServers, serverName);

class ServerTrouble : public OnEachServer {};
INSTANTIATE_TEST_SUITE_P(Servers, ServerTrouble, testing::Values(PrivateServer::Kind::PulseAudio));

TEST_P(ServerTrouble, TheToneComesBackWithTheServer) {
    writePreferences(kSeveralVoices);
    Program program({"--audio", "pulse"});
    const auto sounds = [this](const char* file) {
        const Monitor monitor("speaker.monitor", path(file));
        return waitFor([&] { return monitor.soundingFrames() > 1000; }, 3);
    };
    EXPECT_TRUE(sounds("before"));
    server_.stop();
    server_.start();
    EXPECT_TRUE(sounds("after"));
    EXPECT_TRUE(program.quit());
}

TEST_P(ServerTrouble, AHungServerDoesNotKeepTheProgramFromQuitting) {
    writePreferences(kSeveralVoices);
    Program program({"--audio", "pulse"});
    const Monitor monitor("speaker.monitor", path("heard"));
    ASSERT_TRUE(waitFor([&] { return monitor.soundingFrames() > 1000; }));
    server_.freeze();
    EXPECT_TRUE(program.quit());
    server_.thaw();
    EXPECT_EQ(Preferences().integerValue("GenType2"), 5);
    EXPECT_EQ(Preferences().integerValue("MAIN_outputPopup"), 0);
}

TEST(CommandLine, WhatNeedsNoWindowNeedsNoDisplay) {
    const auto run = [](const char* line) {
        QProcess process;
        process.setEnvironment({"XDG_RUNTIME_DIR=/nowhere"});
        process.start(SONOTRACE_PROGRAM, QString(line).split(' '));
        EXPECT_TRUE(process.waitForFinished()) << line;
        return std::tuple(process.exitCode(), process.readAllStandardError().count("sonotrace: "),
                          process.readAllStandardOutput().count("onotrace") > 0);
    };
    for (const char* wrong :
         {"--audio tape", "--no-such-option", "/dev/null /dev/null", "--audio", "/no/such/file"})
        EXPECT_EQ(run(wrong), std::tuple(2, 1, false)) << wrong;
    for (const char* right : {"--help", "--version"})
        EXPECT_EQ(run(right), std::tuple(0, 0, true)) << right;
}

} // namespace
} // namespace sonotrace
