#include "waterfall/WaterfallController.h"

#include "support/ToolWindow.h"
#include "waterfall/WaterfallView.h"
#include "widgets/LevelIndicator.h"
#include "widgets/RealSlider.h"

#include <QImage>

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

class WaterfallWindowTest : public ListeningWindowTest<WaterfallController> {
protected:
    WaterfallView& view() { return find<WaterfallView>("mainView"); }
};

TEST_F(WaterfallWindowTest, TheEngineGetsWhatIsStoredAndWhatIsTyped) {
    preferences_.setFloat("waterfallStartingFreq", 1000.1);
    preferences_.setInteger("fftSizeLog2", 10);
    open();
    const WaterfallParameters& parameters = controller_->parameters();
    EXPECT_EQ(parameters.waterfallStartFreq, static_cast<double>(1000.1F)) << "stored in single precision";
    EXPECT_EQ(parameters.waterfallFftLen, 64.0);
    view().grab();
    hear(0.5);
    EXPECT_EQ(parameters.waterfallFftLen, 1024.0) << "the first line adopts the requested length";

    choose("windowPopup", 2);
    EXPECT_EQ(parameters.waterfallWindowType, 2);
    const std::pair<const char*, const std::atomic<double>&> fields[] = {
        {"startFreqText", parameters.waterfallStartFreq},
        {"endFreqText", parameters.waterfallEndFreq},
        {"gainText", parameters.waterfallGain},
        {"receiverKHzText", parameters.waterfallReceiverkHz}};
    for (const auto& [name, parameter] : fields) {
        type(name, "37.5 or so");
        EXPECT_EQ(parameter, 37.5) << name;
    }
    type("speedupText", "0");
    find<RealSlider>("soundInputVolume2").setValue(1000);
    choose("inputPopup", 0);
    EXPECT_TRUE(status().startsWith("Paused")) << status().toStdString();
    choose("fftSizePopup", 0);
    controller_->applicationWillTerminate();
    EXPECT_EQ(preferences_.integerValue("fftSizeLog2"), 6);
    window_->resize(3000, 2500);
    view().grab();
    EXPECT_EQ(view().size(), QSize(1536, 1024));
    EXPECT_EQ(find<QWidget>("controlRows").geometry().topRight(),
              view().geometry().bottomRight() + QPoint(0, 1));
}

TEST_F(WaterfallWindowTest, AToneIsALineThatAPictureKeeps) {
    Tone tone(system_);
    tone.bench.set(0, {11025, 0, 0.9, 0, 0, 1}); // the middle of the axis
    storePlainWaterfall(preferences_);
    open();
    choose("inputPopup", 0); // restarts the stream
    view().grab();           // gives the picture its height
    EXPECT_TRUE(QTest::qWaitFor([this] { return controller_->parameters().waterfallMinDB == 60.0F; }));
    hear(2);
    const QImage shown = view().grab().toImage();
    const int middle = shown.height() / 2;
    const QColor line = shown.pixelColor(shown.width() - 5, middle);
    EXPECT_GT(line.red(), 250) << "the top of the colour map";
    QImage fine(2 * shown.size(), shown.format());
    fine.setDevicePixelRatio(2);
    view().render(&fine);
    fine.setDevicePixelRatio(1);
    EXPECT_EQ(fine, shown.scaled(fine.size())) << "on a screen with four pixels a point";
    EXPECT_TRUE(QTest::qWaitFor([this] { return find<LevelIndicator>("volumeLevel").doubleValue() > 0.88; }));

    QTest::mouseClick(&view(), Qt::RightButton, {}, QPoint(100, 10));
    QTest::mouseClick(&view(), Qt::LeftButton, {}, QPoint(200, middle));
    const QString measured = find<QLineEdit>("mouseFrequencyText").text();
    // 100 columns of 1024 samples.
    EXPECT_TRUE(measured.contains(" Hz  2322 mSec")) << measured.toStdString();
    EXPECT_NEAR(measured.section(' ', 0, 0).toInt(), 11025, 22050.0 / view().height() + 1);

    answerFilePanel(folder_.filePath("waterfall"));
    click("menuSaveWaterfallPicture");
    EXPECT_EQ(status(), "Picture saved to " + folder_.filePath("waterfall.png"));
    const QImage saved(folder_.filePath("waterfall.png"));
    EXPECT_EQ(saved.size(), QSize(1536, 1024));
    EXPECT_EQ(saved.pixelColor(view().width() - 5, 1024 - view().height() + middle), line);
    click("colorButton");
    QTest::qWait(120);
    hear(1);
    const QColor grey = view().grab().toImage().pixelColor(shown.width() - 5, middle);
    EXPECT_GT(grey.red(), 200);
    EXPECT_EQ(grey.red(), grey.blue());
}

} // namespace
} // namespace sonotrace
