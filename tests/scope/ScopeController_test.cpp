#include "scope/ScopeController.h"

#include "support/ToolWindow.h"
#include "widgets/RealSlider.h"

#include <QCheckBox>
#include <QImage>

#include <gtest/gtest.h>

#include <cmath>

namespace sonotrace {
namespace {

class ScopeWindowTest : public ListeningWindowTest<ScopeController> {
protected:
    /// The view as it is painted now.
    QImage picture() {
        controller_->window().grab(); // lays out
        return find<QWidget>("mainView").grab().toImage();
    }

    /// Height above the bottom edge at which column x of the upper or lower half is green; -1 where it is
    /// not.
    static int traceAt(const QImage& image, int x, bool upper) {
        const int middle = image.height() / 2;
        for (int y = upper ? 0 : middle; y < (upper ? middle : image.height()); ++y) {
            if (image.pixelColor(x, y).green() > 60)
                return image.height() - y;
        }
        return -1;
    }
};

TEST_F(ScopeWindowTest, AnEmptyStorePutsRangeAndTimeBaseAtTheirEnds) {
    open();
    EXPECT_EQ(controller_->getRange(0), 1.0);
    EXPECT_EQ(find<RealSlider>("sweepSlider").doubleValue(), 4.0);
    EXPECT_EQ(controller_->getSweep(), 10.0);
    EXPECT_EQ(controller_->getTrigger(1), 0.0);
    EXPECT_FALSE(controller_->getInvert(0));
    EXPECT_EQ(find<QLabel>("sweepValue").text(), "10 samples, 0.23 ms");
    expectUsableWindow(controller_->window());
}

TEST_F(ScopeWindowTest, ValuesComeBackButARangeOfZeroCountsAsNone) {
    open();
    find<RealSlider>("rangeSlider1").setDoubleValue(-1.5);
    find<RealSlider>("rangeSlider2").setDoubleValue(0.0);
    find<RealSlider>("triggerSlider2").setDoubleValue(-1234.5);
    find<RealSlider>("offsetSlider1").setDoubleValue(1e9); // pinned
    find<RealSlider>("sweepSlider").setDoubleValue(2.0);
    find<QCheckBox>("polarity2Button").click();
    find<QCheckBox>("invert1Button").click();
    find<RealSlider>("soundInputVolume2").setDoubleValue(350);
    controller_->applicationWillTerminate();
    EXPECT_EQ(preferences_.floatValue("SCOPE_offset1Text"), 400.0F);
    open();
    EXPECT_DOUBLE_EQ(controller_->getRange(0), std::pow(10.0, 1.5));
    EXPECT_EQ(controller_->getRange(1), 1.0);
    EXPECT_EQ(controller_->getTrigger(1), -1234.5);
    EXPECT_EQ(controller_->getSweep(), 1000.0);
    EXPECT_TRUE(controller_->getTriggerPolarity(1));
    EXPECT_FALSE(controller_->getTriggerPolarity(0));
    EXPECT_TRUE(controller_->getInvert(0));
    EXPECT_EQ(find<QLabel>("rangeValue1").text(), "× 31.6");
    float volume = 0;
    system_.getInputVolume(1, 2, volume);
    EXPECT_FLOAT_EQ(volume, 0.35F);

    for (const char* key : {"SCOPE_range1Text", "SCOPE_trigger1Text", "SCOPE_offset2Text", "SCOPE_sweepText"})
        preferences_.setDouble(key, key[6] == 'r' ? -1e300 : 1e300);
    preferences_.setInteger("SCOPE_polarity1Button", 256); // only the low byte counts
    preferences_.setInteger("inputPopup", -7);
    open();
    EXPECT_EQ(controller_->getRange(0), 100.0);
    EXPECT_FALSE(controller_->getTriggerPolarity(0));
    hear(1);
    picture();
}

TEST_F(ScopeWindowTest, TheTracesAreTheSignalTriggeredAndScaled) {
    preferences_.setDouble("SCOPE_soundInputVolume", 1000);
    preferences_.setFloat("SCOPE_sweepText", 3.0); // 100 samples
    preferences_.setInteger("SCOPE_invert1Button", 1);
    preferences_.setInteger("SCOPE_invert2Button", 1);
    Tone tone(system_);
    tone.bench.set(0, {441, 0, 0.5, 0, 0, 1}); // one period a trace on the left
    open();
    controller_->window().resize(800, 600);
    hear(2);
    const QImage image = picture();
    const double scale = 0.25 * image.height() / 35000.0 * 16383;
    EXPECT_EQ(image.pixelColor(image.width() / 2, 3), QColor(Qt::black));
    // Triggered on the rising side: the crest comes a quarter into the trace, the trough at three quarters.
    EXPECT_NEAR(traceAt(image, image.width() / 4, true), 0.75 * image.height() + scale, 2);
    EXPECT_NEAR(traceAt(image, image.width() * 3 / 4, true), 0.75 * image.height() - scale, 2);
    EXPECT_NEAR(traceAt(image, image.width() / 2, false), 0.25 * image.height(), 2) << "the right is silent";

    find<QCheckBox>("polarity1Button").click();
    find<RealSlider>("offsetSlider1").setDoubleValue(30);
    find<RealSlider>("rangeSlider1").setDoubleValue(-std::log10(1.5));
    hear(2);
    const QImage falling = picture();
    EXPECT_NEAR(traceAt(falling, falling.width() * 3 / 4, true), 0.75 * image.height() + 30 + 1.5 * scale, 3);

    find<RealSlider>("triggerSlider1").setDoubleValue(32767); // never: the last good picture stays
    tone.bench.set(0, {441, 0, 0, 0, 7, 1});
    hear(2);
    EXPECT_NEAR(traceAt(picture(), image.width() * 3 / 4, true), 0.75 * image.height() + 30 + 1.5 * scale, 3);

    choose("inputPopup", 0); // restarts the stream
    find<RealSlider>("triggerSlider1").setDoubleValue(0);
    tone.bench.set(0, {441, 0, 0.1, 0, 0, 1});
    hear(2);
    EXPECT_NEAR(traceAt(picture(), image.width() * 3 / 4, true), 0.75 * image.height() + 30 + 0.3 * scale, 3);
}

TEST_F(ScopeWindowTest, WithoutAnInputDeviceItOpensAndSaysSo) {
    expectItOpensWithoutAnInputDeviceAndSaysSo();
}

} // namespace
} // namespace sonotrace
