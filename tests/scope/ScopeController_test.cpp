#include "scope/ScopeController.h"

#include "support/ToolWindow.h"
#include "widgets/RealSlider.h"

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

} // namespace
} // namespace sonotrace
