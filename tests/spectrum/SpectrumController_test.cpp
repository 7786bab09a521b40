#include "spectrum/SpectrumController.h"

#include "spectrum/SpectrumView.h"
#include "support/ToolWindow.h"
#include "widgets/LevelIndicator.h"
#include "widgets/ReadingsPanel.h"
#include "widgets/RealSlider.h"

#include <QClipboard>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QScreen>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace sonotrace {
namespace {

class SpectrumWindowTest : public ListeningWindowTest<SpectrumController> {
protected:
    /// Listens on until the meter shows a level.
    bool seeLevel(double level) {
        return QTest::qWaitFor([&] {
            system_.advance(2205);
            return std::abs(find<LevelIndicator>("volumeLevel").doubleValue() - level) < 0.01;
        });
    }
};

TEST_F(SpectrumWindowTest, TheEngineGetsWhatIsStoredAndWhatIsTyped) {
    preferences_.setFloat("spectrumStartFreq", 1000.1);
    preferences_.setInteger("spectrumNumAvg", 250);
    preferences_.setInteger("SPECTRUM_fftSizePopup", 3);
    open();
    EXPECT_EQ(controller_->display().spectrumStartFreq, static_cast<double>(1000.1F)) << "single precision";
    EXPECT_EQ(controller_->analysis().numAvg(), 100);
    EXPECT_EQ(controller_->analysis().fftSize(), 512);

    testing::internal::CaptureStderr();
    type("startFreqText", "0.1");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "startFreqTextChanged -1717986918\n") << "the low half";
    EXPECT_EQ(controller_->display().spectrumStartFreq, 0.1);
    type("endFreqText", "99.5 Hz");
    click("logCheckbox");
    EXPECT_EQ(controller_->display().spectrumEndFreq, 99.5);
    EXPECT_EQ(controller_->display().logMode, 1);
    EXPECT_TRUE(find<QLineEdit>("endFreqText").toolTip().startsWith("Not used"));
    type("numAvgText", "250");
    EXPECT_EQ(controller_->analysis().numAvg(), 250) << "typed values are not clamped";
    controller_->applicationWillTerminate();
    EXPECT_EQ(preferences_.integerValue("spectrumNumAvg"), 250);
}

TEST_F(SpectrumWindowTest, ATonePeaksInItsBinAndColumnAndTheMeterFallsWithIt) {
    preferences_.setDouble("SPECTRUM_soundInputVolume", 1000);
    preferences_.setInteger("spectrumGridCheckbox", 1);
    preferences_.setInteger("spectrumFillCheckbox", 1);
    Tone tone(system_);
    tone.bench.set(0, {2500, 0, 0.9, 0, 0, 1}); // left only: the channels are added
    open();
    choose("inputPopup", 0); // restarts the stream
    choose("fftSizePopup", 5);
    choose("windowPopup", 9);
    hear(1);
    EXPECT_TRUE(seeLevel(0.9));
    const auto power = controller_->analysis().powerSpectrum().first(1024);
    EXPECT_EQ(std::ranges::max_element(power) - power.begin(), 116) << "2500 / 44100 * 2048";

    window_->resize(800, 600);
    window_->grab();
    const QImage image = find<QWidget>("mainView").grab().toImage();
    const auto has = [&image](int x, Qt::GlobalColor colour) { // in the upper half
        int y = 0;
        while (y < image.height() / 2 && image.pixelColor(x, y) != QColor(colour))
            ++y;
        return y < image.height() / 2;
    };
    // 2500 of 5000 Hz: the middle of the plot, which leaves 50 points at the left and 80 at the right.
    const int middle = 50 + (image.width() - 130) / 2;
    EXPECT_TRUE(has(middle, Qt::green));
    EXPECT_FALSE(has(middle / 2, Qt::green));
    EXPECT_TRUE(has(middle / 2, Qt::red));

    tone.bench.set(0, {2500, 0, 0, 0, 0, 1});
    EXPECT_TRUE(seeLevel(0));
}

TEST_F(SpectrumWindowTest, TheNumbersUnderThePictureAreThoseOfTheTone) {
    preferences_.setDouble("SPECTRUM_soundInputVolume", 1000);
    preferences_.setInteger("SPECTRUM_fftSizePopup", 7);
    preferences_.setInteger("SPECTRUM_windowPopup", 8);
    preferences_.setInteger("SPECTRUM_channelPopup", 1);
    Tone tone(system_);
    tone.bench.set(0, {1000, 0, 0.5, 0.9, 0, 1}); // -6.02 dB on the left
    open();
    window_->show();
    auto& panel = find<ReadingsPanel>("readings");
    const auto shows = [&](const QString& text) {
        return QTest::qWaitFor([&] {
            hear(0.25);
            return panel.text().contains(text) ||
                   find<ReadingsPanel>("pointerReadings").text().contains(text);
        });
    };
    EXPECT_TRUE(shows("Peak\t1000.00 Hz -6.02 dBFS")) << panel.text().toStdString();
    choose("channelPopup", 2);
    EXPECT_TRUE(shows("Peak\t1000.00 Hz -0.92 dBFS")) << panel.text().toStdString();

    // The fifth of 5000 Hz, pointed at with the keys; held, it stays when the tone ends.
    auto& view = find<SpectrumView>("mainView");
    const int column = 50 + (view.width() - 130) / 5;
    view.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&view, Qt::Key_Home);
    for (int i = 50; i < column; ++i)
        QTest::keyClick(&view, Qt::Key_Right);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_TRUE(shows("A\t1000.00 Hz -0.92 dBFS"));
    QTest::mouseClick(&view, Qt::LeftButton, {}, {column + 100, 10});
    EXPECT_TRUE(shows("B - A\t"));
    click("holdButton");
    EXPECT_TRUE(QTest::qWaitFor([this] { return status().startsWith("Held for"); }));
    tone.bench.set(0, {1000, 0, 0, 0, 0, 1});
    hear(2);
    EXPECT_TRUE(panel.text().contains("-0.92 dBFS"));
    click("holdButton");
    EXPECT_TRUE(shows("Peak\t–")) << panel.text().toStdString();
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_TRUE(shows("A\t–"));
}

TEST_F(SpectrumWindowTest, WhatIsExportedIsWhatIsOnTheScreen) {
    preferences_.setDouble("SPECTRUM_soundInputVolume", 1000);
    preferences_.setInteger("spectrumGridCheckbox", 1);
    preferences_.setFloat("gridBrightness", 1000);
    preferences_.setInteger("SPECTRUM_fftSizePopup", 4);
    Tone tone(system_);
    tone.bench.set(0, {2500, 0, 0.9, 0, 0, 1});
    open();
    window_->show();
    trigger("copyData");
    EXPECT_EQ(status(), "There is no spectrum yet to export");
    choose("inputPopup", 0);
    hear(1);
    click("holdButton");
    hear(1);
    QClipboard& clipboard = *QGuiApplication::clipboard();
    const auto rows = [&] {
        trigger("copyData");
        const QByteArray table = clipboard.mimeData()->data("text/csv");
        return table.mid(table.indexOf("\nfrequency_hz"));
    };
    const QByteArray held = rows();
    EXPECT_EQ(held.count('\n'), 2 + 117) << "names, and the bins of 1024 points up to 5000 Hz";
    EXPECT_TRUE(held.contains("\n2497.851562,-0.9484")) << held.toStdString();
    tone.bench.set(0, {2500, 0, 0, 0, 0, 1});
    hear(1);
    EXPECT_EQ(rows(), held);
    trigger("copyPicture");
    EXPECT_TRUE(showsView(clipboard.image(), find<QWidget>("mainView")));
    EXPECT_TRUE(status().startsWith("Picture copied: ")) << status().toStdString();

    trigger("sizeA4");
    const QString path = folder_.filePath("page.pdf");
    answerFilePanel(path);
    trigger("savePicture");
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.read(5) == "%PDF-");
    EXPECT_EQ(status(), "Picture saved to " + path);
    answerFilePanel("/proc/none/data.csv");
    trigger("saveData");
    EXPECT_TRUE(status().startsWith("/proc/none/data.csv cannot be written")) << status().toStdString();
}

TEST(SpectrumView, PaintsAsMuchOfEachSpectrumAsMakesThePictureWhole) {
    SpectrumDisplay display{.gridMode = 1, .gridBrightness = 0.7F};
    SpectrumView view;
    SpectrumAnalysis analysis([&view] { view.showSpectrum(); });
    analysis.setFftSize(1024);
    view.setModel(analysis, display);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    for (int turn = 0; turn < 40; ++turn) {
        display.fillMode = turn / 8 % 2;
        display.gridBrightness = turn < 20 ? 0.7F : 0.9F;
        view.resize(500 + turn / 13, 300);
        std::vector<std::int16_t> frames(2 * 1025);
        for (std::size_t i = 0; i < frames.size(); ++i)
            frames[i] =
                static_cast<std::int16_t>(static_cast<int>(i * i * 7919 % 65536 - 32768) >> turn % 5 * 2);
        analysis.capture(frames);
        QCoreApplication::processEvents();
        const QImage seen = view.screen()->grabWindow(view.winId()).toImage();
        QImage whole(view.size(), seen.format());
        view.render(&whole);
        ASSERT_EQ(seen, whole) << turn;
    }
}

TEST_F(SpectrumWindowTest, TheRowUnderTheTraceSaysWhatIsWrongWithItOrWaitedFor) {
    const auto says = [this](const char* what) {
        return QTest::qWaitFor([&] {
            system_.advance(2205);
            return status().startsWith(what);
        });
    };
    Tone tone(system_);
    tone.bench.set(0, {997, 0, 0.6, 0.6, 0, 1});
    open();
    EXPECT_TRUE(says("Volume is 0"));
    find<RealSlider>("soundInputVolume2").setValue(1000);
    EXPECT_TRUE(says("Left + right overflow"));
    tone.bench.set(0, {997, 0, 0.6, 0, 0, 1});
    EXPECT_TRUE(says("Built-in Loopback"));
    type("numAvgText", "100000");
    EXPECT_TRUE(says("Averaging: block"));
    EXPECT_TRUE(status().endsWith(" left")) << status().toStdString();
    for (const AudioDeviceID device : {1U, 2U, 3U})
        system_.setInputVolume(device, 1, 0.5F);
    EXPECT_TRUE(says("The device stands at 50 % (-6.0 dB)"));
    type("endFreqText", "0");
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return find<QLabel>("inputStatus").toolTip().contains("From is not"); }));
}

} // namespace
} // namespace sonotrace
