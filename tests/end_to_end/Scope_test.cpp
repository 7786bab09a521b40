#include "end_to_end/EndToEnd.h"
#include "scope/ScopeController.h"
#include "scope/ScopeTrace.h"
#include "support/ToolWindow.h"
#include "widgets/RealSlider.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace sonotrace {
namespace {

class ScopeEndToEnd : public ListeningWindowTest<ScopeController, ServedSystem> {
protected:
    ScopeEndToEnd() {
        preferences_.setFloat("SCOPE_sweepText", 3.0); // 100 samples a trace
        preferences_.setInteger("SCOPE_invert1Button", 1);
        preferences_.setInteger("SCOPE_invert2Button", 1);
        preferences_.setDouble("SCOPE_soundInputVolume", 1000);
    }

    /// Sample values of a channel's trace as drawn now.
    std::vector<double> trace(std::int32_t channel) {
        constexpr double kHeight = 4 * 35000; // a point a sample unit
        trace_.build(controller_->controls(), controller_->capture(), 100, kHeight);
        std::vector<double> values;
        for (const PlotPoint& point : trace_.line(channel).subspan(1))
            values.push_back(std::round(point.y - (channel == 0 ? 0.75 : 0.25) * kHeight));
        return values;
    }

    ScopeTrace trace_;
};

TEST_F(ScopeEndToEnd, EachChannelShowsItsSignalFromTheTriggerOn) {
    Tone tone(system_, "speaker");
    tone.bench.set(0, {882, 0, 0.9, 0, 0, 1}); // left a sine, right a square: two periods a trace each
    tone.bench.set(1, {882, 0, 0, 0.5, 1, 1});
    open();
    const auto isSine = [this] {
        const auto values = trace(0);
        for (std::size_t i = 0; i < values.size(); ++i) {
            // From the first sample above zero on, in 50 samples a period; the table's steps are a few units.
            const double expected =
                0.45 * 32767 * std::sin(2 * 3.14159265 * (static_cast<double>(i) + 1.5) / 50);
            if (std::abs(values[i] - expected) > 0.45 * 32767 * 0.2)
                return false;
        }
        return *std::ranges::max_element(values) > 0.445 * 32767;
    };
    const auto isSquare = [this] {
        const auto values = trace(1);
        const auto high = std::ranges::count(values, 8191.0);
        return high + std::ranges::count(values, -8191.0) == 100 && std::abs(high - 50) <= 2;
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return isSine() && isSquare(); }, 10000))
        << testing::PrintToString(trace(1));
    find<RealSlider>("rangeSlider2").setDoubleValue(-std::log10(2.0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(std::ranges::max(trace(1)) - 2 * 8191) < 2; }, 5000));
}

TEST_F(ScopeEndToEnd, TheInputCanBeChangedWhileItListens) {
    Tone tone(system_, "line");
    tone.bench.set(0, {882, 0, 0, 0.5, 1, 1});
    open();
    const auto right = [this] { return std::ranges::count(trace(1), 16383.0); };
    QTest::qWait(700);
    EXPECT_EQ(right(), 0) << "the speaker is silent";
    choose("inputPopup", 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return right() > 40; }, 10000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return status() == "Monitor of line"; }));
}

} // namespace
} // namespace sonotrace
