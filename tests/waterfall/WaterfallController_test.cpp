#include "waterfall/WaterfallController.h"

#include "base/Numbers.h"
#include "support/ToolWindow.h"
#include "waterfall/WaterfallView.h"
#include "widgets/LevelIndicator.h"
#include "widgets/ReadingsPanel.h"
#include "widgets/RealSlider.h"

#include <QAction>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QRegularExpression>

#include <cmath>
#include <gtest/gtest.h>

namespace sonotrace {
namespace {

class WaterfallWindowTest : public ListeningWindowTest<WaterfallController> {
protected:
    WaterfallView& view() { return find<WaterfallView>("mainView"); }

    /// Opens a window that is seen and has heard a tone in mid-height for a second.
    void openWithATone() {
        tone_.bench.set(0, {11025, 0, 0.9, 0, 0, 1});
        storePlainWaterfall(preferences_);
        open();
        window_->show();
        window_->activateWindow();
        choose("inputPopup", 0);
        EXPECT_TRUE(QTest::qWaitFor([this] { return controller_->parameters().waterfallMinDB == 60.0F; }));
        view().grab();
        hear(1);
        view().grab();
    }

    /// Whether a reading, which is not brought up to date at once, comes to be a text.
    bool reads(const QString& name, const QString& pattern) {
        const QRegularExpression row('^' + name + "\\t" + pattern + '$', QRegularExpression::MultilineOption);
        return QTest::qWaitFor(
            [&] { return find<ReadingsPanel>("readings").text().remove(QChar(0x2007)).contains(row); });
    }

    Tone tone_{system_};
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
    for (const auto& [ruler, corner] : {std::pair{"frequencyRuler", view().geometry().bottomLeft()},
                                        {"timeRuler", view().geometry().bottomLeft()},
                                        {"levelRuler", view().geometry().topRight()}})
        EXPECT_TRUE(find<QWidget>(ruler).geometry().adjusted(-20, -1, 1, 1).contains(corner)) << ruler;
}

TEST_F(WaterfallWindowTest, AToneIsALineThatAPictureKeeps) {
    tone_.bench.set(0, {11025, 0, 0.9, 0, 0, 1}); // the middle of the axis
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

TEST_F(WaterfallWindowTest, AStandingPictureIsMeasuredWithMouseAndKeysAndItsReferenceMovesWithIt) {
    openWithATone();
    const QPoint middle(view().width() - 20, view().height() / 2);
    view().setFocus();
    QTest::keyClick(&view(), Qt::Key_P);
    EXPECT_TRUE(find<QAbstractButton>("pauseButton").isChecked());
    hear(0.5);
    EXPECT_TRUE(QTest::qWaitFor([this] { return status().startsWith("Paused for"); }));
    EXPECT_EQ(find<QLineEdit>("speedupText").text(), "1");
    QTest::mouseClick(&view(), Qt::RightButton, {}, middle + QPoint(-5, 10));
    QTest::mouseMove(&view(), middle);
    QTest::mouseClick(&view(), Qt::LeftButton, {}, middle);
    const auto measured = [this] { return find<QLineEdit>("mouseFrequencyText").text(); };
    const QString byMouse = measured();
    EXPECT_TRUE(byMouse.endsWith(" Hz  116.1 mSec")) << byMouse.toStdString();
    EXPECT_TRUE(reads("After ref.", "0.116 s"));
    EXPECT_TRUE(reads("Frequency", byMouse.section(' ', 0, 0) + ".\\d Hz"));
    EXPECT_TRUE(reads("Above ref.", QString("%1 Hz").arg(220500.0 / view().height(), 0, 'f', 1)));
    EXPECT_TRUE(reads("Time ago", "0.441 s")) << "19 columns";
    EXPECT_TRUE(reads("Level", "9\\d.\\d dB"));

    const QImage bare = view().grab().toImage();
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_Return})
        QTest::keyClick(&view(), key);
    EXPECT_EQ(measured(), byMouse);
    EXPECT_NE(view().grab().toImage(), bare) << "the cross-hair";
    QTest::keyClick(&view(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_TRUE(reads("After ref.", "-0.116 s"));
    QTest::keyClick(&view(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_TRUE(reads("After ref.", "0.000 s"));

    QTest::keyClick(&view(), Qt::Key_P);
    hear(1);
    EXPECT_TRUE(reads("After ref.", "before a gap")) << "no time is told over a pause";
    QTest::keyClick(&view(), Qt::Key_Return, Qt::ShiftModifier);
    hear(1); // 43 columns
    EXPECT_TRUE(reads("After ref.", "(0.998|1.022) s"));
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_TRUE(reads("Frequency", "–")) << "there is nothing to point at";
}

TEST_F(WaterfallWindowTest, LimitsFitThePictureAndTheChannelIsChosen) {
    open();
    click("fitButton");
    EXPECT_TRUE(status().contains("nothing in the picture"));
    openWithATone();
    click("fitButton");
    const int top = truncateToInt32(std::ceil(6.25 * std::log(0.9 * 32767 * 512)));
    EXPECT_EQ(find<RealSlider>("maxDbSlider").doubleValue(), top);
    EXPECT_LT(find<RealSlider>("minDbSlider").doubleValue(), 60.0);
    find<QComboBox>("channelPopup").setCurrentIndex(2); // the tone is on the left
    EXPECT_TRUE(QTest::qWaitFor([this] {
        hear(0.25);
        click("fitButton");
        return status().contains("nothing in the picture");
    })) << status().toStdString();
}

TEST_F(WaterfallWindowTest, WhatIsInViewIsExportedPixelByPixelAndAsLevels) {
    open();
    find<QAction>("copyData").trigger();
    EXPECT_EQ(status(), "There is no picture yet to export");
    openWithATone();
    find<QAction>("copyPicture").trigger();
    const QImage page = QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32);
    view().grab();
    const QImage shown = view().grab().toImage().convertToFormat(QImage::Format_RGB32);
    const auto face = [&page, &shown](int x, int y) { return page.copy(QRect(QPoint(x, y), shown.size())); };
    bool isThere = false;
    for (int y = 0; y <= page.height() - shown.height(); ++y)
        for (int x = 0; x <= page.width() - shown.width() && !isThere; ++x)
            isThere = page.pixel(x, y) == shown.pixel(0, 0) && face(x, y) == shown;
    EXPECT_TRUE(isThere) << "the picture is on the page as it is on the screen";

    answerFilePanel(folder_.filePath("levels"));
    find<QAction>("saveData").trigger();
    EXPECT_EQ(status(), "Data saved to " + folder_.filePath("levels.csv"));
    QFile file(folder_.filePath("levels.csv"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    EXPECT_TRUE(lines.contains("# Source: Built-in Loopback"));
    EXPECT_EQ(lines.filter(QRegularExpression("^[^#]")).size(), 1 + 43) << "a second of columns";
    EXPECT_EQ(lines.last().count(','), view().height());
    EXPECT_GT(lines.last().section(',', view().height() / 2 + 1).section(',', 0, 0).toDouble(), 90.0);
}

TEST_F(WaterfallWindowTest, FullPicturesOfSlowColumnsAreSavedUnderNamesOfTheirOwn) {
    const auto saved = [this] { return QDir(folder_.filePath("full")).entryList({"2*-*.png"}); };
    preferences_.setPath("WATERFALL_pictureFolder", folder_.filePath("full"));
    preferences_.setFloat("WATERFALL_slowText", 0.01); // a tenth is the least
    preferences_.setInteger("WATERFALL_savePicturesButton", 1);
    openWithATone();
    const double full = view().width() / 10.0;
    hear(full - 2);
    QTest::qWait(60);
    EXPECT_FALSE(status().contains("cannot be written"));
    hear(2);
    EXPECT_TRUE(QTest::qWaitFor([this] { return status().contains("cannot be written"); }))
        << "there is no such folder";
    QDir(folder_.path()).mkdir("full");
    for (const qsizetype count : {1, 2, 3}) {
        hear(full);
        EXPECT_TRUE(QTest::qWaitFor([&] { return saved().size() == count; })) << saved().size();
    }
    EXPECT_EQ(QImage(folder_.filePath("full/" + saved().first())).size(), QSize(1536, 1024));
    type("slowText", "");
    EXPECT_GT(controller_->parameters().slowSamples(), 0.0) << "still being typed";
    QTest::keyClick(&find<QLineEdit>("slowText"), Qt::Key_Return);
    EXPECT_EQ(controller_->parameters().slowSamples(), 0.0);
    answerFilePanel(folder_.path());
    click("pictureFolderButton");
    EXPECT_EQ(preferences_.path("WATERFALL_pictureFolder"), folder_.path());
}

} // namespace
} // namespace sonotrace
