#include "sweep/SweepController.h"

#include "app/Preferences.h"
#include "audio/AudioDeviceTable.h"
#include "end_to_end/Monitor.h"
#include "generator/OutputStream.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/PrivateServer.h"
#include "support/RenderBench.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

using namespace std::chrono_literals;

/// The sweep's window with the output that it works on, set as a user sets it before the sound starts.
class SweepSession {
public:
    SweepSession(SoundSystem& system, Preferences& preferences)
        : controller_(live_.sweep, preferences),
          output_(system, devices_,
                  [this](std::span<std::int16_t> samples) { live_.output.render(samples); }) {
        devices_.GetSoundDevices(system, AudioDeviceTable::Variant::Generator);
        controller_.awakeFromNib();
        find<QSlider>("amplitudeLeft").setValue(1000);
        find<QSlider>("amplitudeRight").setValue(500);
        click("leftEnabled");
        click("rightEnabled");
    }
    ~SweepSession() { output_.stopSound(); }

    void type(const char* field, const char* text) { find<QLineEdit>(field).setText(text); }
    void click(const char* button) { find<QAbstractButton>(button).click(); }
    void quit() { controller_.applicationWillTerminate(); }
    void play() { output_.startSound(0); }
    bool passHasEnded() const { return live_.sweep.done != 0; }

private:
    template <typename Control>
    Control& find(const char* name) {
        return *controller_.window().findChild<Control*>(name);
    }

    RenderBench live_;
    SweepController controller_;
    AudioDeviceTable devices_;
    OutputStream output_;
};

constexpr int kBuffers = 11; // 1.25 s

std::vector<std::int16_t> expected(double start, double end, double rate, bool log, bool reverse,
                                   bool oneShot) {
    RenderBench bench;
    bench.sweep.startFrequency = start;
    bench.sweep.endFrequency = end;
    bench.sweep.rate = rate;
    bench.sweep.amplitudeLeft = 1.0;
    bench.sweep.amplitudeRight = 0.5;
    bench.sweep.leftEnabled = 1;
    bench.sweep.rightEnabled = 1;
    bench.sweep.log = log ? 1 : 0;
    bench.sweep.reverse = reverse ? 1 : 0;
    bench.sweep.enabled = 1;
    if (oneShot)
        bench.sweep.startOneShot();
    return bench.render(kBuffers);
}

class SweepEndToEnd : public testing::TestWithParam<PrivateServer::Kind> {
protected:
    SweepEndToEnd() : server_(GetParam()) {}

    QString path(const char* name) const {
        return QString::fromStdString((server_.folder() / name).string());
    }

    PrivateServer server_;
};

TEST_P(SweepEndToEnd, EverySweepArrivesAsRenderedAndAnEndedPassIsStoredAsOff) {
    const struct {
        const char* name;
        const char* start;
        const char* end;
        const char* rate;
        std::vector<const char*> clicks;
        std::vector<std::int16_t> signal;
    } sweeps[] = {
        {"linear",
         "100",
         "15000",
         "20000",
         {"enabledCheck"},
         expected(100, 15000, 20000, false, false, false)},
        {"downward log",
         "16000",
         "20",
         "20000.5",
         {"logSweep", "enabledCheck"},
         expected(16000, 20, 20000.5, true, false, false)},
        {"reverse",
         "300",
         "3000",
         "6000",
         {"reverse", "enabledCheck"},
         expected(300, 3000, 6000, false, true, false)},
        {"one shot", "440", "8800", "9000", {"oneShot"}, expected(440, 8800, 9000, false, false, true)},
    };
    const Monitor monitor("speaker.monitor", path("heard"));
    PulseSoundSystem system;
    ASSERT_TRUE(system.connected(10s));
    for (const auto& sweep : sweeps) {
        Preferences preferences(path(sweep.name));
        SweepSession session(system, preferences);
        session.type("startFreq", sweep.start);
        session.type("endFreq", sweep.end);
        session.type("rate", sweep.rate);
        for (const char* button : sweep.clicks)
            session.click(button);
        session.play();
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return longestMatch(sweep.signal, monitor.heard()) == sweep.signal.size(); }, 10000))
            << sweep.name;
        EXPECT_EQ(session.passHasEnded(), sweep.name == std::string("one shot"));
        session.quit();
        EXPECT_EQ(preferences.integerValue("sweepEnabled"), session.passHasEnded() ? 0 : 1) << sweep.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Servers, SweepEndToEnd,
                         testing::Values(PrivateServer::Kind::PulseAudio, PrivateServer::Kind::PipeWire),
                         [](const auto& kind) {
                             return kind.param == PrivateServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire";
                         });

} // namespace
} // namespace sonotrace
