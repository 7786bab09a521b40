#include "end_to_end/EndToEnd.h"
#include "support/ToolWindow.h"
#include "waterfall/WaterfallController.h"
#include "waterfall/WaterfallView.h"

#include <QImage>
#include <gtest/gtest.h>

#include <chrono>

namespace sonotrace {
namespace {

class WaterfallEndToEnd : public ListeningWindowTest<WaterfallController, ServedSystem> {
protected:
    WaterfallEndToEnd() { storePlainWaterfall(preferences_); }

    WaterfallView& view() { return find<WaterfallView>("mainView"); }

    /// Columns from the right edge back to the last one that is strong (red) at a height given as a part of
    /// the view's.
    int columnsSinceStrongAt(double part) {
        const QImage image = view().grab().toImage();
        const auto strong = [&](int columns) {
            const QColor colour = image.pixelColor(image.width() - 1 - columns,
                                                   static_cast<int>(image.height() * (1.0 - part)));
            return colour.red() > 250 && colour.green() < 50;
        };
        int columns = 0;
        while (columns < image.width() && !strong(columns))
            ++columns;
        return columns;
    }

    bool strongAt(double part) { return columnsSinceStrongAt(part) == 0; }
};

TEST_F(WaterfallEndToEnd, AToneLandsOnItsRowScrollsWithTimeAndIsMeasured) {
    Tone tone(system_, "speaker");
    tone.bench.set(0, {11025, 0, 0.9, 0, 0, 1});
    open();
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
    const QString measured = find<QLineEdit>("mouseFrequencyText").text();
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
    open();
    view().grab();
    QTest::qWait(4500); // until a pass is under way
    const auto begin = std::chrono::steady_clock::now();
    choose("inputPopup", 1);
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count(), 2.0);
    type("speedupText", "10");
    choose("fftSizePopup", 4);
    EXPECT_TRUE(QTest::qWaitFor([this] { return strongAt(0.5); }, 15000));
}

} // namespace
} // namespace sonotrace
