#include "waterfall/WaterfallController.h"

#include "support/ToolWindow.h"
#include "waterfall/WaterfallView.h"
#include "widgets/LevelIndicator.h"
#include "widgets/RealSlider.h"

#include <QCheckBox>
#include <QImage>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

class WaterfallWindowTest : public ListeningWindowTest<WaterfallController> {
protected:
    WaterfallView& view() { return find<WaterfallView>("mainView"); }
};

TEST_F(WaterfallWindowTest, AnEmptyStoreGivesTheDefaults) {
    open();
    for (const auto& [field, text] :
         {std::pair{"startFreqText", "0"}, {"endFreqText", "5000"}, {"gainText", "1"}, {"speedupText", "1"}})
        EXPECT_EQ(find<QLineEdit>(field).text(), text) << field;
    EXPECT_EQ(find<QComboBox>("fftSizePopup").currentText(), "64");
    EXPECT_EQ(controller_->parameters().fftSizeLog2, 7);
    EXPECT_EQ(controller_->parameters().waterfallFftLen, 64.0);
    EXPECT_EQ(find<RealSlider>("minDbSlider").doubleValue(), 25);
    EXPECT_EQ(find<RealSlider>("maxDbSlider").doubleValue(), 75);
    for (const char* hidden : {"staticText1", "staticText5", "receiverKHzText", "filenameText",
                               "uploadButton", "timestampButton", "playthruButton"})
        EXPECT_TRUE(find<QWidget>(hidden).isHidden()) << hidden;
    expectUsableWindow(controller_->window());
    view().grab();
    hear(0.5);
    EXPECT_EQ(controller_->parameters().waterfallFftLen, 128.0)
        << "the first line adopts the requested length";
}

TEST_F(WaterfallWindowTest, ValuesComeBackAndOddOnesAreSurvived) {
    preferences_.setFloat("waterfallEndingFreq", 0);
    preferences_.setFloat("waterfallGain", 2);
    preferences_.setInteger("waterfallSpeedup", -3);
    preferences_.setInteger("fftSizeLog2", 30);
    preferences_.setInteger("WATERFALL_windowPopup", 77);
    preferences_.setDouble("WATERFALL_maxDB", 40);
    preferences_.setDouble("WATERFALL_minDB", 40);
    open();
    EXPECT_EQ(find<QLineEdit>("endFreqText").text(), "0") << "the defaults of end and gain go together";
    EXPECT_EQ(find<QLineEdit>("speedupText").text(), "1");
    view().grab();
    hear(1);
    choose("fftSizePopup", 0);
    EXPECT_EQ(controller_->parameters().fftSizeLog2, 6);
    for (const char* text : {"nan", "1e308", "-1e308", "", "0", "-1", "2147483648", "131072", "3"}) {
        for (const char* field : {"startFreqText", "endFreqText", "speedupText"})
            type(field, text);
        hear(0.5);
        QTest::mouseClick(&view(), Qt::LeftButton, {}, QPoint(20, 20));
        view().grab();
    }
    controller_->window().resize(3000, 2500);
    view().grab();
    EXPECT_LE(view().width(), 1536);
    EXPECT_LE(view().height(), 1024);
    type("speedupText", "0");
    hear(0.5);
    controller_->applicationWillTerminate();
    EXPECT_EQ(preferences_.integerValue("fftSizeLog2"), 6);
    EXPECT_EQ(preferences_.integerValue("waterfallSpeedup"), 0);
    EXPECT_EQ(preferences_.integerValue("WATERFALL_fftSizePopup"), 0);
    open();
    EXPECT_EQ(controller_->parameters().fftSizeLog2, 7);
    EXPECT_EQ(controller_->parameters().waterfallSpeedup, 1);
}

TEST_F(WaterfallWindowTest, SpareControlsWork) {
    open();
    type("gainText", "3");
    type("receiverKHzText", "7");
    for (const char* button : {"playthruButton", "uploadButton", "timestampButton"})
        find<QAbstractButton>(button).click();
    EXPECT_EQ(controller_->parameters().waterfallGain, 3);
    EXPECT_EQ(controller_->parameters().waterfallReceiverkHz, 7);
    const QRegularExpression stamp("^\\d{4}-\\d\\d-\\d\\d-\\d\\d\\.\\d\\d\\.\\d\\d\\.png$");
    EXPECT_TRUE(stamp.match(find<QLineEdit>("filenameText").text()).hasMatch());
}

TEST_F(WaterfallWindowTest, AToneIsALineThatClicksMeasureAndAPictureKeeps) {
    Tone tone(system_);
    tone.bench.set(0, {11025, 0, 0.9, 0, 0, 1}); // the middle of the axis
    storePlainWaterfall(preferences_);
    open();
    view().grab(); // gives the picture its height
    EXPECT_TRUE(QTest::qWaitFor([this] { return controller_->parameters().waterfallMinDB == 60.0F; }));
    hear(2);
    const QImage shown = view().grab().toImage();
    const int middle = shown.height() / 2;
    const QColor line = shown.pixelColor(shown.width() - 5, middle);
    EXPECT_GT(line.red(), 250) << "the top of the colour map";
    EXPECT_EQ(shown.pixelColor(shown.width() - 5, middle / 2), QColor(0, 0, 0)) << "nothing above the tone";
    EXPECT_TRUE(QTest::qWaitFor([this] { return find<LevelIndicator>("volumeLevel").doubleValue() > 0.88; }));

    QTest::mouseClick(&view(), Qt::RightButton, {}, QPoint(100, 10));
    QTest::mouseClick(&view(), Qt::LeftButton, {}, QPoint(200, middle));
    const QString measured = find<QLineEdit>("mouseFrequencyText").text();
    // 100 columns of 1024 samples.
    EXPECT_TRUE(measured.contains(" Hz  2322 mSec")) << measured.toStdString();
    EXPECT_NEAR(measured.section(' ', 0, 0).toInt(), 11025, 22050.0 / view().height() + 1);

    answerFilePanel(folder_.filePath("waterfall"));
    find<QAbstractButton>("menuSaveWaterfallPicture").click();
    EXPECT_EQ(status(), "Picture saved to waterfall.png");
    const QImage saved(folder_.filePath("waterfall.png"));
    EXPECT_EQ(saved.size(), QSize(1536, 1024));
    EXPECT_EQ(saved.pixelColor(view().width() - 5, 1024 - view().height() + middle), line);
    EXPECT_EQ(saved.pixelColor(1530, 5).alpha(), 0) << "never painted";
    EXPECT_EQ(QImage::fromData(view().ReturnTiff(), "tiff").size(), QSize(1536, 1024));

    // Grey, and a restart of the stream.
    find<QCheckBox>("colorButton").click();
    choose("inputPopup", 0);
    EXPECT_EQ(status(), "Built-in Loopback") << "the notice ends with the choice";
    QTest::qWait(120);
    hear(1);
    const QColor grey = view().grab().toImage().pixelColor(shown.width() - 5, middle);
    EXPECT_GT(grey.red(), 200);
    EXPECT_EQ(grey.red(), grey.blue());

    // Paused, the picture stands; after that it goes on with fresh samples.
    type("speedupText", "0");
    const QImage before = view().grab().toImage();
    tone.bench.set(0, {5512.5, 0, 0.9, 0, 0, 1});
    hear(3);
    EXPECT_EQ(view().grab().toImage(), before);
    type("speedupText", "1");
    hear(1);
    const QImage after = view().grab().toImage();
    EXPECT_GT(after.pixelColor(after.width() - 3, after.height() * 3 / 4).red(), 200);
    EXPECT_LT(after.pixelColor(after.width() - 3, middle).red(), 100);
}

TEST_F(WaterfallWindowTest, WithoutAnInputDeviceItOpensAndSaysSo) {
    expectItOpensWithoutAnInputDeviceAndSaysSo("WATERFALL_inputPopup");
}

} // namespace
} // namespace sonotrace
