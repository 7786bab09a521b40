#include "sweep/SweepController.h"

#include "audio/AudioDeviceTable.h"
#include "audio/OutputStream.h"
#include "end_to_end/EndToEnd.h"
#include "support/ToolWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

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
        findControl<QSlider>(controller_.window(), "amplitudeLeft").setValue(1000);
        findControl<QSlider>(controller_.window(), "amplitudeRight").setValue(500);
        click("leftEnabled");
        click("rightEnabled");
    }
    ~SweepSession() { output_.stopSound(); }

    void type(const char* field, const char* text) {
        findControl<QLineEdit>(controller_.window(), field).setText(text);
    }
    void click(const char* button) { findControl<QAbstractButton>(controller_.window(), button).click(); }
    void quit() { controller_.applicationWillTerminate(); }
    void play() { output_.startSound(0); }
    bool passHasEnded() const { return live_.sweep.done != 0; }

private:
    RenderBench live_;
    SweepController controller_;
    AudioDeviceTable devices_;
    OutputStream output_;
};

/// A sweep as it is typed and switched on.
struct TypedSweep {
    const char* name;
    const char* start;
    const char* end;
    const char* rate;
    std::vector<std::string> clicks;

    bool clicked(const char* button) const { return std::ranges::count(clicks, button) > 0; }

    std::vector<std::int16_t> signal() const {
        RenderBench bench;
        bench.setSweep(std::stod(start), std::stod(end), std::stod(rate));
        bench.sweep.log = clicked("logSweep") ? 1 : 0;
        bench.sweep.reverse = clicked("reverse") ? 1 : 0;
        if (clicked("oneShot"))
            bench.sweep.startOneShot();
        return bench.render(11); // 1.25 s
    }
};

class SweepEndToEnd : public OnEachServer {};

TEST_P(SweepEndToEnd, EverySweepArrivesAsRenderedAndAnEndedPassIsStoredAsOff) {
    const TypedSweep sweeps[] = {{"linear", "100", "15000", "20000", {"enabledCheck"}},
                                 {"downward log", "16000", "20", "20000.5", {"logSweep", "enabledCheck"}},
                                 {"reverse", "300", "3000", "6000", {"reverse", "enabledCheck"}},
                                 {"one shot", "440", "8800", "9000", {"oneShot"}}};
    const Monitor monitor("speaker.monitor", path("heard"));
    PulseSoundSystem system;
    ASSERT_TRUE(system.connected(10s));
    for (const TypedSweep& sweep : sweeps) {
        const auto signal = sweep.signal();
        Preferences preferences(path(sweep.name));
        SweepSession session(system, preferences);
        session.type("startFreq", sweep.start);
        session.type("endFreq", sweep.end);
        session.type("rate", sweep.rate);
        for (const std::string& button : sweep.clicks)
            session.click(button.c_str());
        session.play();
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return longestMatch(signal, monitor.heard()) == signal.size(); }, 10000))
            << sweep.name;
        EXPECT_EQ(session.passHasEnded(), sweep.clicked("oneShot"));
        session.quit();
        EXPECT_EQ(preferences.integerValue("sweepEnabled"), session.passHasEnded() ? 0 : 1) << sweep.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Servers, SweepEndToEnd, kServers, serverName);

} // namespace
} // namespace sonotrace
