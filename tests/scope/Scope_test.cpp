#include "scope/ScopeTrace.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

namespace sonotrace {
namespace {

const double kNan = std::nan("");

using Signal = std::function<int(int)>;

int sawtooth(int i) {
    return i < 11025 ? i * 37 % 2000 - 1000 : 0;
}

/// Low until sample `edge`, then high.
Signal step(int edge) {
    return [edge](int i) { return i < edge ? -5 : 5; };
}

Signal constant(int level) {
    return [level](int) { return level; };
}

struct Scope {
    int blocks = 0;
    ScopeControls controls{.invert = {true, true}}; // shown as captured
    ScopeCapture capture{controls, [this] { ++blocks; }};
    ScopeTrace trace;

    void take(const Signal& left, const Signal& right, int frames = 11025) {
        std::vector<std::int16_t> buffer;
        for (int i = 0; i < frames; ++i)
            buffer.insert(buffer.end(),
                          {static_cast<std::int16_t>(left(i)), static_cast<std::int16_t>(right(i))});
        capture.capture(buffer);
    }

    void show(const Signal& left, const Signal& right) {
        take(left, right);
        take(left, right);
    }

    /// Draws in a view with 0.005 points per sample unit and gives the log lines.
    std::string draw(double width = 1000, double height = 700) {
        testing::internal::CaptureStderr();
        trace.build(controls, capture, width, height);
        return testing::internal::GetCapturedStderr();
    }

    /// Sample unit at a corner of a channel's line.
    long sample(std::int32_t ch, std::size_t corner) const {
        return std::lround((trace.line(ch)[corner].y - (ch == 0 ? 525 : 175)) / 0.005);
    }
};

TEST(ScopeControls, SlidersGiveGainsAndTraceLengths) {
    for (const auto& [slider, gain] :
         {std::pair{0.0, 1.0}, {-1.0, 10.0}, {-2.0, 100.0}, {-3.0, 100.0}, {50000.0, 1.0}, {kNan, 1.0}})
        EXPECT_DOUBLE_EQ(scopeGain(slider), gain) << slider;
    for (const auto& [slider, length] :
         {std::pair{1.0, 10000}, {2.5, 316}, {4.0, 10}, {600.0, 10}, {0.0, 10000}, {-5.0, 10}, {kNan, 10}})
        EXPECT_EQ(displayBuflength(scopeSweep(slider)), length) << slider; // 10^10 is the smallest integer
    for (const auto& [value, set] : {std::pair{0, false}, {1, true}, {256, false}, {-1, true}})
        EXPECT_EQ(isScopeButtonSet(value), set) << value;
}

TEST(ScopeCapture, ABlockIsTheFirstOfTwoBuffersAndNegatedUnlessInverted) {
    Scope scope;
    scope.controls.invert = {true, false};
    scope.take(constant(1), constant(2));
    EXPECT_EQ(scope.capture.display(0)[0], 0);
    scope.take(constant(3), constant(4));
    EXPECT_EQ(scope.blocks, 1);
    EXPECT_EQ(scope.capture.display(0)[11024], 1);
    EXPECT_EQ(scope.capture.display(1)[11024], -2);
    EXPECT_EQ(scope.capture.display(1)[11025], 0);
    scope.show(constant(5), constant(6));
    EXPECT_EQ(scope.blocks, 2);
    EXPECT_EQ(scope.capture.display(0)[0], 5);

    scope.take(constant(7), constant(7), 1);
    scope.take(constant(7), constant(7), 100000); // counts for 11025
    EXPECT_EQ(scope.blocks, 2);
    scope.take(constant(7), constant(7));
    EXPECT_EQ(scope.blocks, 3);
}

TEST(ScopeCapture, GainIsLimitedAndTruncated) {
    struct Row {
        int sample;
        double gain;
        int shown;
    };
    for (const Row& row :
         {Row{100, 1.999, 199}, Row{-100, 1.999, -199}, Row{328, 100, 32767}, Row{-32768, 1, -32767},
          Row{-7, 1e300, -32767}, Row{0, HUGE_VAL, 0}, Row{7, kNan, 0}}) {
        Scope scope;
        scope.controls.range = {row.gain, 1};
        scope.show(constant(row.sample), constant(row.sample));
        EXPECT_EQ(scope.capture.display(0)[9], row.shown) << row.sample << " by " << row.gain;
        EXPECT_EQ(scope.capture.display(1)[9], std::max(row.sample, -32767));
    }
}

// Worked out by hand for the steps, and sample by sample by another program for the sawtooth.
TEST(TriggerSearch, FindsTheCrossingBehindTheOtherSideOfTheLevel) {
    struct Row {
        Signal signal;
        TriggerCondition condition;
        std::int32_t length;
        std::int32_t start;
        std::int32_t triggerBase;
        bool found;
    };
    const Row rows[] = {
        {sawtooth, {500.5, false}, 1000, 0, 42, true},
        {sawtooth, {500.5, true}, 1000, 300, 326, true},
        {sawtooth, {998.5, false}, 10, 0, 1028, true}, // between the two highest samples
        {sawtooth, {999, false}, 10, 0, 22040, false}, // at the highest: nothing is above
        {sawtooth, {-1000, true}, 10, 0, 22040, false},
        {sawtooth, {0, false}, 10000, 9000, 9056, true},
        {sawtooth, {0, false}, 10000, 11950, 12060, false}, // silence follows
        {step(5000), {0, false}, 10, 4990, 5002, true},     // the edge is the tenth sample behind a low one
        {step(5000), {0, false}, 10, 4995, 5007, true},     // and here among those passed over
        {step(5000), {0, false}, 10, 5000, 22050, false},
        {step(5000), {0, true}, 10, 0, 22040, false},
        {step(22039), {0, false}, 10, 0, 22040, true}, // the last place with room for 10 samples
        {step(22039), {0, false}, 11, 0, 22039, false},
        {step(22039), {0, false}, 10, 22029, 22040, false},
        {step(22039), {0, false}, 10, 22040, 22050, false},
        {sawtooth, {kNan, false}, 10, 0, 22050, false},
        {sawtooth, {2147483648.0, false}, 10, 0, 22040, false},
        {sawtooth, {500.5, false}, 1000, INT32_MIN, 42, true},
        {sawtooth, {500.5, false}, 1000, INT32_MAX, 22060, false},
    };
    for (std::size_t k = 0; k < std::size(rows); ++k) {
        const Row& row = rows[k];
        std::vector<std::int16_t> samples;
        for (int i = 0; i < 22050; ++i)
            samples.push_back(static_cast<std::int16_t>(row.signal(i)));
        const TriggerPosition position =
            findTrigger(ScopeSamples(samples), row.condition, row.length, row.start);
        EXPECT_EQ(position.triggerBase, row.triggerBase) << "row " << k;
        EXPECT_EQ(position.found, row.found) << "row " << k;
    }
}

TEST(ScopeTrace, LinesRunFromTheTriggerAcrossTheView) {
    Scope scope;
    scope.controls.offset = {20, -30.5};
    scope.show(step(5000), sawtooth);
    EXPECT_EQ(scope.draw(), "ch 0 triggerBase 5001   displayBuflength 10\n"
                            "ch 1 triggerBase 5056   displayBuflength 10\n"); // searched from 5001 on
    ASSERT_EQ(scope.trace.line(0).size(), 11U);
    EXPECT_EQ(scope.trace.line(0)[0], (PlotPoint{0, 545.025}));
    EXPECT_EQ(scope.trace.line(0)[1], (PlotPoint{0, 545.025}));
    EXPECT_EQ(scope.trace.line(0)[10], (PlotPoint{900, 545.025}));
    EXPECT_EQ(scope.trace.line(1)[2].x, 100);
    EXPECT_DOUBLE_EQ(scope.trace.line(1)[2].y, 145.045);
}

TEST(ScopeTrace, AChannelThatDoesNotTriggerKeepsItsLastBlock) {
    Scope scope;
    scope.controls.sweep = 20;
    scope.show([](int i) { return i < 8000 ? -5 : i - 7000; }, step(5000));
    EXPECT_EQ(scope.draw(), "ch 0 triggerBase 8001   displayBuflength 20\n"
                            "ch 1 triggerBase 22040   displayBuflength 20\n"); // its own edge is over
    EXPECT_EQ(scope.sample(1, 0), 0);                                          // nothing held yet
    scope.show(constant(123), sawtooth);
    scope.controls.sweep = 1e9; // longer than the trigger was found for
    EXPECT_EQ(scope.draw(), "ch 0 triggerBase 12060   displayBuflength 10000\n"
                            "ch 1 triggerBase 8029   displayBuflength 10000\n"); // searched from 8001 on
    EXPECT_EQ(scope.sample(0, 0), 1001);
    EXPECT_EQ(scope.sample(0, 3024), 4024);
    EXPECT_EQ(scope.sample(0, 3025), 0); // where the held signal ends
    ASSERT_EQ(scope.trace.line(0).size(), 10001U);
    EXPECT_EQ(scope.trace.line(0)[10000].x, 999.9000000000001); // 9999 * 0.1, not summed up
}

TEST(ScopeTrace, HostileValuesNeverReachThePainter) {
    const double values[] = {0, 1, -1, 1e300, -1e300, 2147483648.0, HUGE_VAL, -HUGE_VAL, kNan};
    Scope scope;
    scope.show(sawtooth, constant(0));
    for (const double offset : values) {
        for (const double size : values) {
            scope.controls.offset = {offset, -offset};
            scope.controls.trigger = {size, offset};
            scope.controls.sweep = size;
            scope.draw(size, size);
            for (const std::int32_t ch : {0, 1}) {
                for (const PlotPoint& point : scope.trace.line(ch))
                    ASSERT_LT(std::abs(point.x) + std::abs(point.y), 1e7) << offset << " and " << size;
            }
        }
    }
}

} // namespace
} // namespace sonotrace
