#include "spectrum/SpectrumController.h"

#include "spectrum/SpectrumTrace.h"
#include "support/ToolWindow.h"
#include "widgets/LevelIndicator.h"
#include "widgets/RealSlider.h"

#include <QCheckBox>
#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace sonotrace {
namespace {

class SpectrumWindowTest : public ListeningWindowTest<SpectrumController> {
protected:
    std::size_t loudestBin() const {
        const auto power = controller_->analysis().powerSpectrum();
        const auto half = power.first(static_cast<std::size_t>(controller_->analysis().fftSize()) / 2);
        return static_cast<std::size_t>(std::distance(half.begin(), std::ranges::max_element(half)));
    }
};

TEST_F(SpectrumWindowTest, AnEmptyStoreGivesTheDefaults) {
    open();
    for (const auto& [field, text] :
         {std::pair{"startFreqText", "0"}, {"endFreqText", "5000"}, {"numAvgText", "1"}})
        EXPECT_EQ(find<QLineEdit>(field).text(), text);
    for (const char* box : {"fillCheckbox", "gridCheckbox"})
        EXPECT_FALSE(find<QCheckBox>(box).isChecked()) << box;
    EXPECT_EQ(find<QComboBox>("fftSizePopup").currentText(), "64");
    EXPECT_EQ(find<QComboBox>("fftSizePopup").count(), 12);
    EXPECT_EQ(find<QComboBox>("windowPopup").itemText(9), "Flat top");
    EXPECT_EQ(controller_->analysis().windowType(), 0);
    EXPECT_EQ(controller_->display().gridBrightness, 1000.0F);
    EXPECT_TRUE(QTest::qWaitFor([this] { return controller_->display().gridBrightness == 1.0F; }));
    float volume = 1;
    system_.getInputVolume(1, 2, volume);
    EXPECT_EQ(volume, 0.0F) << "the stored volume is sent, and 0 is what an empty store holds";
    expectUsableWindow(controller_->window());
}

TEST_F(SpectrumWindowTest, StoredValuesAreClampedComeBackAndSurviveAnything) {
    preferences_.setInteger("spectrumNumAvg", 250);
    preferences_.setFloat("gridBrightness", 1e30);
    preferences_.setInteger("SPECTRUM_fftSizePopup", 99);
    preferences_.setInteger("SPECTRUM_windowPopup", -5);
    preferences_.setInteger("inputPopup", 7);
    preferences_.setDouble("SPECTRUM_soundInputVolume", 350.9);
    preferences_.setDouble("spectrumStartFreq", std::nan(""));
    open();
    EXPECT_EQ(controller_->analysis().numAvg(), 100);
    EXPECT_EQ(find<QComboBox>("fftSizePopup").currentIndex(), 0);
    EXPECT_EQ(find<QComboBox>("inputPopup").currentIndex(), 0);
    float volume = 0;
    system_.getInputVolume(1, 1, volume);
    EXPECT_FLOAT_EQ(volume, 0.35F);

    type("numAvgText", "250");
    EXPECT_EQ(controller_->analysis().numAvg(), 250) << "typed values are not clamped";
    testing::internal::CaptureStderr();
    type("startFreqText", "0.1");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "startFreqTextChanged -1717986918\n") << "the low half";
    type("startFreqText", "123.5");
    find<QComboBox>("windowPopup").setCurrentIndex(6);
    find<QCheckBox>("logCheckbox").click();
    find<QCheckBox>("gridCheckbox").click();
    controller_->applicationWillTerminate();
    EXPECT_EQ(preferences_.integerValue("spectrumNumAvg"), 250);
    EXPECT_EQ(preferences_.integerValue("inputPopup"), 0);
    open();
    EXPECT_EQ(controller_->display().spectrumStartFreq, 123.5);
    EXPECT_EQ(controller_->analysis().windowType(), 6);
    EXPECT_EQ(controller_->display().logMode, 1);
    EXPECT_EQ(controller_->display().gridMode, 1);

    for (const char* text : {"nan", "1e308", "-1e308", "-5", "", "99999999999"}) {
        for (const char* field : {"startFreqText", "endFreqText", "numAvgText"})
            type(field, text);
        controller_->window().grab();
        hear(1);
    }
}

TEST_F(SpectrumWindowTest, SizesWindowsAndAveragesChangeWhileItListens) {
    preferences_.setDouble("SPECTRUM_soundInputVolume", 1000);
    preferences_.setInteger("SPECTRUM_fftSizePopup", 6); // 4096
    preferences_.setInteger("SPECTRUM_windowPopup", 1);
    Tone tone(system_);
    tone.bench.set(0, {44100.0 * 100 / 4096, 0, 0.9, 0, 0, 1}); // left only: the channels are added
    open();
    hear(1);
    EXPECT_EQ(loudestBin(), 100U);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return std::abs(find<LevelIndicator>("volumeLevel").doubleValue() - 0.9) < 0.01; }));
    choose("fftSizePopup", 8);
    choose("windowPopup", 9);
    hear(1);
    EXPECT_EQ(loudestBin(), 400U);
    type("numAvgText", "4");
    hear(3);
    EXPECT_EQ(loudestBin(), 400U);
    choose("inputPopup", 0); // the same device again: the stream is restarted
    hear(3);
    EXPECT_EQ(loudestBin(), 400U);
    EXPECT_EQ(status(), "Built-in Loopback");

    tone.bench.set(0, {44100.0 * 100 / 4096, 0, 0.9, 0.9, 0, 1});
    hear(4);
    const auto thirdHarmonic = [this] {
        const auto power = controller_->analysis().powerSpectrum();
        return power[1200] / power[400];
    };
    EXPECT_GT(thirdHarmonic(), 1e-3) << "loud in-phase channels wrap";
    tone.bench.set(0, {44100.0 * 100 / 4096, 0, 0.45, 0.45, 0, 1});
    hear(4);
    EXPECT_LT(thirdHarmonic(), 1e-6);
}

TEST_F(SpectrumWindowTest, TheViewPaintsTraceAndGridsInTheirColours) {
    preferences_.setDouble("SPECTRUM_soundInputVolume", 1000);
    preferences_.setInteger("SPECTRUM_fftSizePopup", 5);
    preferences_.setInteger("spectrumGridCheckbox", 1);
    preferences_.setInteger("spectrumFillCheckbox", 1);
    Tone tone(system_);
    tone.bench.set(0, {2500, 0, 0.5, 0, 0, 1});
    open();
    auto& view = find<QWidget>("mainView");
    hear(1);
    controller_->window().resize(800, 600);
    controller_->window().grab();
    const QImage image = view.grab().toImage();
    EXPECT_EQ(image.pixelColor(2, 2), QColor(Qt::black));
    // 2500 of 5000 Hz: the middle column of the plot, which begins 50 points from the left and ends 80 from
    // the right.
    const int middle = 50 + (view.width() - 130) / 2;
    const int quiet = 50 + (view.width() - 130) / 4 + 5;
    // Between the lines of -30 and -20 dB.
    const int halfway = view.height() - static_cast<int>((7.5 * 2.3 + 1.67) * 0.0405 * view.height());
    const int floor = view.height() - static_cast<int>(std::lround(view.height() * 0.0405 * 1.67));
    const auto near = [&image](int x, int y, Qt::GlobalColor colour) { // at most 4 columns and 2 rows away
        bool found = false;
        for (int i = 0; i < 9 * 5; ++i)
            found = found || image.pixelColor(x - 4 + i % 9, y - 2 + i / 9) == QColor(colour);
        return found;
    };
    EXPECT_TRUE(near(middle, halfway, Qt::green));
    EXPECT_TRUE(near(quiet + 7, floor, Qt::red));
    EXPECT_FALSE(near(quiet, halfway, Qt::green));
}

TEST_F(SpectrumWindowTest, WithoutAnInputDeviceItOpensAndSaysSo) {
    expectItOpensWithoutAnInputDeviceAndSaysSo();
}

} // namespace
} // namespace sonotrace
