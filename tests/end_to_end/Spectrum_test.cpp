#include "end_to_end/EndToEnd.h"
#include "spectrum/SpectrumController.h"
#include "spectrum/SpectrumTrace.h"
#include "support/ToolWindow.h"
#include "widgets/LevelIndicator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace sonotrace {
namespace {

class SpectrumEndToEnd : public ListeningWindowTest<SpectrumController, ServedSystem> {
protected:
    SpectrumEndToEnd() {
        preferences_.setInteger("inputPopup", 0); // the default source, the speaker's monitor
        preferences_.setDouble("SPECTRUM_soundInputVolume", 1000);
        preferences_.setInteger("SPECTRUM_fftSizePopup", 8); // 16384
        preferences_.setInteger("SPECTRUM_windowPopup", 1);
        preferences_.setFloat("spectrumEndFreq", 20000);
    }

    /// Column of the highest point of a plot 500 columns wide, and its height over the floor.
    std::pair<int, double> peak(double from, double to) const {
        SpectrumDisplay display = controller_->display();
        display.spectrumStartFreq = from;
        display.spectrumEndFreq = to;
        const double size = controller_->analysis().fftSize();
        const SpectrumGeometry geometry = spectrumGeometry({0, 0, 630, 400}, display, size);
        SpectrumTrace trace;
        trace.build(geometry, display, controller_->analysis().powerSpectrum(), size);
        const auto line = trace.line();
        const auto highest = std::ranges::max_element(line, {}, &PlotPoint::y);
        return {static_cast<int>(highest->x) - geometry.left, highest->y - geometry.yFloor};
    }

    bool seePeak(double from, double to, int column) {
        return QTest::qWaitFor(
            [&] { return std::abs(peak(from, to).first - column) <= 1 && peak(from, to).second > 200; },
            10000);
    }
};

TEST_F(SpectrumEndToEnd, PeaksStandWhereTheyShouldAndTheMeterShowsTheLevel) {
    Tone tone(system_, "speaker");
    tone.bench.set(0, {5000, 0, 0.8, 0, 0, 1});
    tone.bench.set(1, {12000, 0, 0, 0.8, 0, 1});
    open();
    EXPECT_TRUE(seePeak(0, 10000, 250));
    EXPECT_TRUE(seePeak(10000, 20000, 100));
    const auto level = [this] { return find<LevelIndicator>("volumeLevel").doubleValue(); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(level() - 0.4) < 0.01; })) << level();

    // The device's own volume is what the slider sets.
    find<QSlider>("soundInputVolume2").setValue(500);
    EXPECT_TRUE(waitFor(
        [&] { return system_.pactl("get-source-volume speaker.monitor").find("50%") != std::string::npos; }));
}

TEST_F(SpectrumEndToEnd, TheInputCanBeChangedAndMayGoAwayWhileItListens) {
    Tone speaker(system_, "speaker");
    Tone line(system_, "line");
    speaker.bench.set(0, {5000, 0, 0.8, 0, 0, 1});
    line.bench.set(0, {15000, 0, 0.3, 0, 0, 1}); // fainter: the server moves it to the speaker in the end
    open();
    EXPECT_TRUE(seePeak(0, 20000, 125));
    choose("inputPopup", 1);
    EXPECT_TRUE(seePeak(0, 20000, 375));
    EXPECT_TRUE(QTest::qWaitFor([&] { return status() == "Monitor of line"; }));
    system_.pactl("unload-module $(pactl list short modules | grep sink_name=line | cut -f1)");
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return status().contains("not on the chosen device") || status().contains("gone");
    })) << status().toStdString();
    choose("inputPopup", 0);
    EXPECT_TRUE(seePeak(0, 20000, 125));
}

} // namespace
} // namespace sonotrace
