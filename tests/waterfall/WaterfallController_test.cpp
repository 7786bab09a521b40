#include "waterfall/WaterfallController.h"

#include "support/DeviceListSystem.h"
#include "support/FilePanel.h"
#include "support/ToolWindow.h"
#include "waterfall/WaterfallView.h"
#include "widgets/LevelIndicator.h"
#include "widgets/RealSlider.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QImage>
#include <QLabel>
#include <QRegularExpression>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace sonotrace {
namespace {

class WaterfallWindowTest : public StoreTest {
protected:
    void open(SoundSystem& system) {
        controller_ = std::make_unique<WaterfallController>(system, preferences_);
        controller_->awakeFromNib();
    }

    /// A window that listens with full volume to 0 to 22050 Hz in plain lines of 1024 samples, 43 a second.
    void openPlain() {
        preferences_.setFloat("waterfallEndingFreq", 22050);
        preferences_.setFloat("waterfallGain", 1);
        preferences_.setInteger("waterfallSpeedup", 1);
        preferences_.setInteger("fftSizeLog2", 10);
        preferences_.setInteger("WATERFALL_fftSizePopup", 4);
        preferences_.setInteger("WATERFALL_windowPopup", 1);
        preferences_.setInteger("colorWaterfallPlot", 1);
        preferences_.setDouble("soundInputVolume", 1000);
        preferences_.setDouble("WATERFALL_minDB", 60);
        preferences_.setDouble("WATERFALL_maxDB", 100);
        open(system_);
        view().grab(); // gives the picture its height
    }

    template <typename Control>
    Control& find(const char* name) {
        return StoreTest::find<Control>(controller_->window(), name);
    }

    WaterfallView& view() { return find<WaterfallView>("mainView"); }

    void hear(double seconds) {
        for (double heard = 0; heard < seconds; heard += 0.25) {
            system_.advance(11025);
            QTest::qWait(1);
        }
    }

    void type(const char* field, const QString& text) { find<QLineEdit>(field).setText(text); }

    LoopbackSystem system_{LoopbackSystem::Clock::Manual};
    std::unique_ptr<WaterfallController> controller_;
};

TEST_F(WaterfallWindowTest, AnEmptyStoreGivesTheDefaults) {
    open(system_);
    EXPECT_EQ(find<QLineEdit>("startFreqText").text(), "0");
    EXPECT_EQ(find<QLineEdit>("endFreqText").text(), "5000");
    EXPECT_EQ(find<QLineEdit>("gainText").text(), "1");
    EXPECT_EQ(find<QLineEdit>("speedupText").text(), "1");
    EXPECT_EQ(find<QComboBox>("fftSizePopup").currentText(), "64");
    EXPECT_EQ(controller_->parameters().fftSizeLog2, 7);
    EXPECT_EQ(controller_->parameters().waterfallFftLen, 64.0);
    EXPECT_EQ(find<QComboBox>("windowPopup").currentText(), "Rectangular");
    EXPECT_FALSE(find<QCheckBox>("colorButton").isChecked());
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
    open(system_);
    EXPECT_EQ(find<QLineEdit>("endFreqText").text(), "0") << "the defaults of end and gain go together";
    EXPECT_EQ(find<QLineEdit>("speedupText").text(), "1");
    view().grab();
    hear(1);
    const auto& sizes = find<QComboBox>("fftSizePopup");
    find<QComboBox>("fftSizePopup").setCurrentIndex(0);
    Q_EMIT find<QComboBox>("fftSizePopup").activated(0);
    EXPECT_EQ(controller_->parameters().fftSizeLog2, 6);
    for (const char* text : {"nan", "1e308", "-1e308", "", "0", "-1", "2147483648", "131072", "3"}) {
        for (const char* field : {"startFreqText", "endFreqText", "speedupText"})
            type(field, text);
        hear(0.5);
        QTest::mouseClick(&view(), Qt::LeftButton, {}, QPoint(20, 20));
        EXPECT_FALSE(view().grab().isNull()) << text;
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
    EXPECT_EQ(preferences_.integerValue("WATERFALL_fftSizePopup"), sizes.currentIndex());
    open(system_);
    EXPECT_EQ(controller_->parameters().fftSizeLog2, 7);
    EXPECT_EQ(controller_->parameters().waterfallSpeedup, 1);
}

TEST_F(WaterfallWindowTest, HandlersLogTheirTextsAndSpareControlsWork) {
    open(system_);
    testing::internal::CaptureStderr();
    type("gainText", "3");
    type("receiverKHzText", "7");
    find<QAbstractButton>("playthruButton").click();
    find<QAbstractButton>("timestampButton").click();
    find<QAbstractButton>("uploadButton").click();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "endFreqTextChanged\nstartFreqTextChanged\ndoPlayThru 1\n"
              "set kAudioDevicePropertyPlayThru err=-1  1.000000lag\n"
              "set kAudioDevicePropertyPlayThru err=-1  1.000000lag\n"
              "set kAudioDevicePropertyPlayThru err=-1  1.000000lag\ndoTimestamp\ndoUploadButton\n");
    EXPECT_EQ(controller_->parameters().waterfallGain, 3);
    EXPECT_EQ(controller_->parameters().waterfallReceiverkHz, 7);
    const QRegularExpression stamp("^\\d{4}-\\d\\d-\\d\\d-\\d\\d\\.\\d\\d\\.\\d\\d\\.png$");
    EXPECT_TRUE(stamp.match(find<QLineEdit>("filenameText").text()).hasMatch());
}

TEST_F(WaterfallWindowTest, AToneIsALineThatClicksMeasureAndAPictureKeeps) {
    Tone tone(system_);
    tone.bench.set(0, {11025, 0, 0.9, 0, 0, 1}); // the middle of the axis
    openPlain();
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
    EXPECT_NEAR(measured.section(' ', 0, 0).toInt(), 11025, 22050 / view().height() + 1);

    answerFilePanel(folder_.filePath("waterfall"));
    find<QAbstractButton>("menuSaveWaterfallPicture").click();
    const QImage saved(folder_.filePath("waterfall.png"));
    EXPECT_EQ(saved.size(), QSize(1536, 1024));
    EXPECT_EQ(saved.pixelColor(view().width() - 5, 1024 - view().height() + middle), line);
    EXPECT_EQ(saved.pixelColor(1530, 5).alpha(), 0) << "never painted";
    EXPECT_EQ(QImage::fromData(view().ReturnTiff(), "tiff").size(), QSize(1536, 1024));

    // Grey, and a restart of the stream.
    find<QCheckBox>("colorButton").click();
    Q_EMIT find<QComboBox>("inputPopup").activated(0);
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
    DeviceListSystem system({device(3, "Speaker", 2, 0)});
    open(system);
    EXPECT_EQ(find<QLabel>("inputStatus").text(), "There is no input device");
    find<QAbstractButton>("playthruButton").click();
    EXPECT_FALSE(view().grab().isNull());
}

} // namespace
} // namespace sonotrace
