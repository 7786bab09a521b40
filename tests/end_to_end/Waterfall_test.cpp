#include "platform/pulse/PulseSoundSystem.h"
#include "support/PrivateServer.h"
#include "support/ToolWindow.h"
#include "waterfall/WaterfallController.h"
#include "waterfall/WaterfallView.h"

#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

namespace sonotrace {
namespace {

using namespace std::chrono_literals;

class WaterfallEndToEnd : public StoreTest {
protected:
    WaterfallEndToEnd() {
        EXPECT_TRUE(system_.connected(10s));
        preferences_.setFloat("waterfallEndingFreq", 22050);
        preferences_.setFloat("waterfallGain", 1);
        preferences_.setInteger("waterfallSpeedup", 1);
        preferences_.setInteger("fftSizeLog2", 10); // 43 columns a second
        preferences_.setInteger("WATERFALL_fftSizePopup", 4);
        preferences_.setInteger("WATERFALL_windowPopup", 1);
        preferences_.setInteger("colorWaterfallPlot", 1);
        preferences_.setDouble("soundInputVolume", 1000);
        preferences_.setDouble("WATERFALL_minDB", 60);
        preferences_.setDouble("WATERFALL_maxDB", 100);
    }

    WaterfallView& view() { return find<WaterfallView>(controller_->window(), "mainView"); }

    /// Whether the newest column is strong (red) at a height given as a part of the view's.
    bool strongAt(double part) {
        const QImage image = view().grab().toImage();
        const QColor colour =
            image.pixelColor(image.width() - 1, static_cast<int>(image.height() * (1.0 - part)));
        return colour.red() > 250 && colour.green() < 50;
    }

    /// Columns from the right edge back to the last one that is strong at this height.
    int columnsSinceStrongAt(double part) {
        const QImage image = view().grab().toImage();
        const int row = static_cast<int>(image.height() * (1.0 - part));
        int columns = 0;
        while (columns < image.width() && image.pixelColor(image.width() - 1 - columns, row).red() <= 250)
            ++columns;
        return columns;
    }

    PrivateServer server_;
    PulseSoundSystem system_;
    std::unique_ptr<WaterfallController> controller_;
};

TEST_F(WaterfallEndToEnd, AToneLandsOnItsRowScrollsWithTimeAndIsMeasured) {
    Tone tone(system_, "speaker");
    tone.bench.set(0, {11025, 0, 0.9, 0, 0, 1});
    controller_ = std::make_unique<WaterfallController>(system_, preferences_);
    controller_->awakeFromNib();
    controller_->window().show();
    view().grab();
    ASSERT_TRUE(QTest::qWaitFor([this] { return strongAt(0.5); }, 10000));
    EXPECT_FALSE(strongAt(0.25));

    tone.bench.set(0, {5512.5, 0, 0.9, 0, 0, 1});
    ASSERT_TRUE(QTest::qWaitFor([this] { return strongAt(0.25) && !strongAt(0.5); }, 5000));
    const int before = columnsSinceStrongAt(0.5);
    const auto begin = std::chrono::steady_clock::now();
    QTest::qWait(3000);
    const int passed = columnsSinceStrongAt(0.5) - before;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    // The picture moves a captured quarter of a second at a time.
    EXPECT_NEAR(passed, seconds * 44100 / 1024, 2 * 44100 / 1024 * 0.25 + 1);

    const int columns = columnsSinceStrongAt(0.5);
    const int row = view().height() - static_cast<int>(view().height() * 0.25);
    QTest::mouseClick(&view(), Qt::RightButton, {}, QPoint(view().width() - columns, row));
    QTest::mouseClick(&view(), Qt::LeftButton, {}, QPoint(view().width(), row));
    const QString measured = find<QLineEdit>(controller_->window(), "mouseFrequencyText").text();
    EXPECT_NEAR(measured.section(' ', 0, 0).toInt(), 5512, 22050 / view().height() + 2)
        << measured.toStdString();
    EXPECT_NEAR(measured.section(' ', 3, 3).toDouble(), columns * 1024 * 1000.0 / 44100, 1.0)
        << measured.toStdString();
}

TEST_F(WaterfallEndToEnd, TheInputCanBeChangedAtTheHighestCost) {
    Tone tone(system_, "line");
    tone.bench.set(0, {11025, 0, 0.9, 0, 0, 1});
    preferences_.setInteger("fftSizeLog2", 17);
    preferences_.setInteger("WATERFALL_fftSizePopup", 11);
    preferences_.setInteger("waterfallSpeedup", 131072); // minutes of work in one pass
    controller_ = std::make_unique<WaterfallController>(system_, preferences_);
    controller_->awakeFromNib();
    view().grab();
    QTest::qWait(4500); // until a pass is under way
    auto& popup = find<QComboBox>(controller_->window(), "inputPopup");
    const auto begin = std::chrono::steady_clock::now();
    popup.setCurrentIndex(1);
    Q_EMIT popup.activated(1);
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count(), 2.0);
    find<QLineEdit>(controller_->window(), "speedupText").setText("10");
    find<QComboBox>(controller_->window(), "fftSizePopup").setCurrentIndex(4);
    Q_EMIT find<QComboBox>(controller_->window(), "fftSizePopup").activated(4);
    EXPECT_TRUE(QTest::qWaitFor([this] { return strongAt(0.5); }, 15000));
}

} // namespace
} // namespace sonotrace
