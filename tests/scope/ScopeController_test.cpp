#include "scope/ScopeController.h"

#include "support/ToolWindow.h"
#include "widgets/ReadingsPanel.h"
#include "widgets/RealSlider.h"

#include <QClipboard>
#include <QImage>

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

class ScopeWindowTest : public ListeningWindowTest<ScopeController> {
protected:
    void slide(const char* slider, double value) { find<RealSlider>(slider).setDoubleValue(value); }

    /// Height above the bottom edge of the first green point of column x from `top` on.
    static int traceAt(const QImage& image, int x, int top) {
        int y = top;
        while (y < image.height() && image.pixelColor(x, y).green() <= 60)
            ++y;
        return image.height() - y;
    }
};

TEST_F(ScopeWindowTest, ControlsAreReadOutAndHandedToTheEngineAtOnce) {
    preferences_.setInteger("SCOPE_polarity2Button", 256); // its low byte counts
    open();
    slide("rangeSlider1", -1.5);
    slide("offsetSlider2", -30);
    slide("triggerSlider1", 1234.5);
    slide("sweepSlider", 2);
    click("polarity2Button");
    click("invert1Button");
    const ScopeControls& controls = controller_->controls();
    EXPECT_EQ(controls.range, (std::array{scopeGain(-1.5), 1.0}));
    EXPECT_EQ(controls.offset, (std::array{0.0, -30.0}));
    EXPECT_EQ(controls.trigger, (std::array{1234.5, 0.0}));
    EXPECT_EQ(controls.triggerPolarity, (std::array{false, true}));
    EXPECT_EQ(controls.invert, (std::array{true, false}));
    EXPECT_EQ(controls.sweep, 1000.0);
    EXPECT_EQ(text("rangeValue1"), "× 31.6");
}

TEST_F(ScopeWindowTest, TheTracesAreTheSignalTriggeredAndScaled) {
    preferences_.setDouble("SCOPE_soundInputVolume", 1000);
    preferences_.setFloat("SCOPE_sweepText", 3.0); // 100 samples
    preferences_.setInteger("SCOPE_invert1Button", 1);
    Tone tone(system_);
    tone.bench.set(0, {441, 0, 0.5, 0, 0, 1}); // one period a trace on the left
    open();
    window_->resize(800, 600);
    choose("inputPopup", 0); // restarts the stream
    hear(2);
    const QImage image = find<QWidget>("mainView").grab().toImage();
    const double scale = 0.25 * image.height() / 35000.0 * 16383;
    // On the rising side: the crest comes a quarter into the trace.
    EXPECT_NEAR(traceAt(image, image.width() / 4, 0), 0.75 * image.height() + scale, 2);
    EXPECT_NEAR(traceAt(image, 9, image.height() / 2), 0.25 * image.height(), 2) << "the right is silent";
    choose("inputPopup", 0);
    EXPECT_EQ(status(),
              "Channel 1 triggered · Channel 2 held: the level is not crossed behind channel 1's start");
}

TEST_F(ScopeWindowTest, ReadingsSayWhatIsHeardAndStayWithThePictureThatIsHeld) {
    preferences_.setDouble("SCOPE_soundInputVolume", 1000);
    preferences_.setFloat("SCOPE_sweepText", 3.0); // 100 samples
    preferences_.setFloat("SCOPE_trigger1Text", 20000);
    preferences_.setFloat("SCOPE_trigger2Text", 20000);
    Tone tone(system_);
    tone.bench.set(0, {441, 0, 0.5, 0, 0, 1});
    tone.bench.set(1, {441, -90, 0, 0.25, 0, 1});
    open();
    window_->resize(1000, 800);
    auto& view = find<QWidget>("mainView");
    const auto picture = [&view] { return view.grab().toImage(); };
    const auto readings = [&] {
        picture();
        QTest::qWait(1); // they follow the picture
        return find<ReadingsPanel>("readings").text();
    };
    choose("inputPopup", 0);
    click("singleButton");
    hear(2);
    const QString heard = readings();
    for (const char* reading : {"\nFrequency 1\t441.000 Hz (109)\n", "\nAmbiguous\tby 2.2676 ms\n",
                                "\nPhase 2 - 1\t-90.02°\n", "\nLevel 2\t-18.06 dBFS\n"})
        EXPECT_TRUE(heard.contains(reading)) << reading << heard.toStdString();
    EXPECT_FALSE(find<QAbstractButton>("holdButton").isChecked()); // the levels are too high
    slide("triggerSlider1", 0);
    hear(2);
    EXPECT_TRUE(find<QAbstractButton>("holdButton").isChecked());
    const QString kept = readings();
    const QImage held = picture();
    tone.bench.set(0, {882, 0, 0.5, 0, 0, 1});
    hear(2);
    EXPECT_EQ(readings(), kept);
    EXPECT_EQ(picture(), held);
    choose("inputPopup", 0);
    EXPECT_TRUE(status().startsWith("Held, ")) << status().toStdString();
    click("cursorsButton");
    EXPECT_NE(picture(), held);
    click("cursorsButton");
    EXPECT_EQ(picture(), held);
    click("cursorsButton");
    QTest::mouseClick(&view, Qt::LeftButton, {}, {view.width() - 20, 50}); // nearer to B
    QTest::keyClick(&view, Qt::Key_End);
    const QString ends = readings();
    for (const double end : {0.25, 1.0 - 1.0 / view.width()})
        EXPECT_TRUE(ends.contains(QString("\t%1 ms\n").arg(100 / 44.1 * end, 0, 'f', 4)))
            << ends.toStdString();
}

/// With traces of lines and of columns.
TEST_F(ScopeWindowTest, WhatIsExportedIsWhatIsOnTheScreen) {
    preferences_.setDouble("SCOPE_soundInputVolume", 1000);
    Tone tone(system_);
    tone.bench.set(0, {441, 0, 0.5, 0.3, 0, 1});
    open();
    window_->show();
    trigger("copyPicture");
    EXPECT_EQ(status(), "There is no block yet to export");
    choose("inputPopup", 0);
    slide("offsetSlider1", 25);
    for (const double sweep : {3.0, 1.0}) {
        slide("sweepSlider", sweep);
        hear(2);
        click("holdButton");
        QCoreApplication::processEvents();
        trigger("copyPicture");
        EXPECT_TRUE(showsView(QGuiApplication::clipboard()->image(), find<QWidget>("mainView"))) << sweep;
        click("holdButton");
    }
}

} // namespace
} // namespace sonotrace
