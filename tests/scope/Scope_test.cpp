#include "scope/ScopeTrace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <vector>

namespace sonotrace {
namespace {

const double kNan = std::nan("");
constexpr double kPi = std::numbers::pi;

using Signal = std::function<double(int)>;

int sawtooth(int i) {
    return i < 11025 ? i * 37 % 2000 - 1000 : 0;
}

/// Low until sample `edge`, then high.
Signal step(int edge) {
    return [edge](int i) { return i < edge ? -5 : 5; };
}

/// The same level everywhere.
Signal constant(int level) {
    return [level](int) { return level; };
}

struct Scope {
    int blocks = 0;
    ScopeControls controls{.invert = {true, true}}; // shown as captured
    ScopeCapture capture{controls, [this] { ++blocks; }};
    ScopeTrace trace;

    /// Captures two buffers, which show the first.
    void show(const Signal& left, const Signal& right) {
        for (const int start : {0, 11025}) {
            std::vector<std::int16_t> buffer;
            for (int i = 2 * start; i < 2 * (start + 11025); ++i)
                buffer.push_back(static_cast<std::int16_t>((i % 2 == 0 ? left : right)(i / 2)));
            capture.capture(buffer);
        }
    }

    /// Draws in a view with 0.005 points per sample unit and gives the log lines.
    std::string draw() {
        testing::internal::CaptureStderr();
        trace.build(controls, capture, 1000, 700);
        return testing::internal::GetCapturedStderr();
    }
};

TEST(ScopeControls, SlidersGiveGainsAndTraceLengths) {
    for (const auto& [slider, gain] :
         {std::pair{0.0, 1.0}, {-1.0, 10.0}, {-2.0, 100.0}, {-3.0, 100.0}, {50000.0, 1.0}, {kNan, 1.0}})
        EXPECT_DOUBLE_EQ(scopeGain(slider), gain) << slider;
    for (const auto& [slider, length] :
         {std::pair{1.0, 10000}, {2.5, 316}, {4.0, 10}, {600.0, 10}, {0.0, 10000}, {-5.0, 10}, {kNan, 10}})
        EXPECT_EQ(displayBuflength(scopeSweep(slider)), length) << slider; // 10^10 is the smallest integer
}

TEST(ScopeCapture, ABlockIsTheFirstOfTwoBuffersScaledAndNegatedUnlessInverted) {
    const std::tuple<int, double, int> rows[] = {
        {100, 1.999, 199}, {-100, 1.999, -199}, {328, 100, 32767}, {-32768, 1, -32767}, {7, kNan, 0}};
    for (const auto& [sample, gain, shown] : rows) {
        Scope scope;
        scope.controls.invert = {true, false};
        scope.controls.range = {gain, 1};
        scope.show([level = sample](int i) { return i < 11025 ? level : 3; }, constant(sample));
        EXPECT_EQ(scope.blocks, 1);
        EXPECT_EQ(scope.capture.display(0)[11024], shown) << sample << " by " << gain;
        EXPECT_EQ(scope.capture.display(1)[11024], std::min(-sample, 32767));
    }
}

TEST(ScopeCapture, KeepsWhatCameAndHowItIsShownAndHolds) {
    Scope scope;
    scope.controls.range = {10, 1};
    scope.controls.invert = {true, false};
    scope.show(constant(4000), constant(-32768));
    EXPECT_EQ(scope.capture.raw(0)[11024], 4000);
    EXPECT_EQ(scope.capture.raw(1)[0], -32768);
    scope.draw();
    EXPECT_NEAR(scope.trace.scale(0).levelAt(525 + 0.005 * 10 * 4000), 4000 / 32768.0, 1e-12);
    EXPECT_NEAR(scope.trace.scale(1).levelAt(175 + 0.005 * 4000), -4000 / 32768.0, 1e-12);
    const ScopeLevels levels = visibleLevels({.baseLine = 10, .rise = -20, .most = 1}, 25);
    EXPECT_EQ(levels.axis, (Axis{0.5, -0.75}));
    EXPECT_EQ(std::pair(levels.below, levels.over), std::pair(0.0, 0.0));
    scope.capture.hold(true);
    scope.show(constant(1), constant(1));
    EXPECT_EQ(std::tuple(scope.blocks, scope.capture.blocks(), scope.capture.raw(0)[0]),
              std::tuple(1, std::int64_t{1}, std::int16_t{4000}));
}

// Worked out by hand for the steps, and sample by sample by another program for the sawtooth.
TEST(TriggerSearch, FindsTheCrossingBehindTheOtherSideOfTheLevel) {
    const struct {
        Signal signal;
        TriggerCondition condition;
        std::int32_t length, start, triggerBase;
        bool found;
    } rows[] = {
        {sawtooth, {500.5, false}, 1000, 0, 42, true},
        {sawtooth, {500.5, true}, 1000, 300, 326, true},
        {sawtooth, {999, false}, 10, 0, 22040, false}, // at the highest: nothing is above
        {sawtooth, {-1000, true}, 10, 0, 22040, false},
        {sawtooth, {0, false}, 10000, 11950, 12060, false}, // silence follows
        {step(5000), {0, false}, 10, 4990, 5002, true},     // the edge is the tenth sample behind a low one
        {step(5000), {0, false}, 10, 4995, 5007, true},     // and here among those passed over
        {step(5000), {0, false}, 10, 5000, 22050, false},
        {step(22039), {0, false}, 10, 0, 22040, true}, // the last place with room for 10 samples
        {step(22039), {0, false}, 11, 0, 22039, false},
        {sawtooth, {kNan, false}, 10, 0, 22050, false},
        {sawtooth, {500.5, false}, 1000, INT32_MAX, 22060, false},
    };
    for (const auto& row : rows) {
        std::vector<std::int16_t> samples;
        for (int i = 0; i < 22050; ++i)
            samples.push_back(static_cast<std::int16_t>(row.signal(i)));
        const auto position = findTrigger(ScopeSamples(samples), row.condition, row.length, row.start);
        EXPECT_EQ(std::pair(position.triggerBase, position.found), std::pair(row.triggerBase, row.found))
            << "row " << &row - rows;
    }
}

TEST(ScopeTrace, LinesRunFromTheTriggerAndAChannelWithoutOneKeepsItsLastBlock) {
    Scope scope;
    scope.controls.offset = {20, -30.5};
    scope.controls.sweep = 20;
    scope.show([](int i) { return i < 8000 ? -5 : i - 7000; }, step(5000));
    EXPECT_EQ(scope.draw(), "ch 0 triggerBase 8001   displayBuflength 20\n"
                            "ch 1 triggerBase 22040   displayBuflength 20\n"); // its own edge is over
    ASSERT_EQ(scope.trace.line(0).size(), 21U);
    EXPECT_EQ(scope.trace.line(0)[0], scope.trace.line(0)[1]);
    EXPECT_EQ(scope.trace.line(0)[1], (PlotPoint{0, 550.005}));
    EXPECT_EQ(scope.trace.line(0)[20], (PlotPoint{950, 550.1}));
    EXPECT_EQ(scope.trace.line(1)[2], (PlotPoint{50, 144.5})); // nothing held yet
    scope.controls.range[0] = 10;                              // not that of the held block
    scope.show(constant(123), sawtooth);
    scope.controls.sweep = 1e9; // longer than the trigger was found for
    EXPECT_EQ(scope.draw(), "ch 0 triggerBase 12060   displayBuflength 10000\n"
                            "ch 1 triggerBase 8029   displayBuflength 10000\n"); // searched from 8001 on
    ASSERT_EQ(scope.trace.line(0).size(), 10001U);
    EXPECT_EQ(scope.trace.line(0)[3024].y, 565.12);
    EXPECT_NEAR(scope.trace.scale(0).levelAt(565.12), 4024 / 32768.0, 1e-9);
    EXPECT_EQ(scope.trace.line(0)[3025].y, 545);                // where the held signal ends
    EXPECT_EQ(scope.trace.line(0)[10000].x, 999.9000000000001); // 9999 * 0.1, not summed up
    EXPECT_TRUE(scope.trace.findings(0).held && !scope.trace.findings(1).held);
    EXPECT_EQ(scope.trace.findings(0).signalLength, 3024);
    EXPECT_EQ(scope.trace.findings(1).signalLength, 2996);
}

TEST(SteadyTrigger, KeepsTonesWhereTheyAreAndThePhaseBetweenTheChannels) {
    for (const double frequency : {100.0, 1000.0, 7000.0, 15000.0}) {
        for (const bool falling : {false, true}) {
            Scope scope;
            scope.controls.sweep = frequency > 500 ? 63 : 6300;
            scope.controls.steady = 2;
            scope.controls.trigger[1] = 6000;
            scope.controls.triggerPolarity[1] = falling;
            for (int block = 0; block < 9; ++block) {
                // The third harmonic passes the level more than once in each period.
                const auto angle = [=](int i) { return (i + 0.37 * block) * frequency * 2 * kPi / 44100; };
                const auto tone = [=](int i) { return 12000 * std::sin(angle(i)); };
                const auto wave = [=](int i) {
                    return tone(i) + (frequency < 5000 ? 12000 * std::sin(3 * angle(i) + 1) : 0.0);
                };
                scope.show(tone, wave);
                scope.draw();
                EXPECT_EQ(scope.trace.steadyState(), SteadyState::Centred);
                EXPECT_EQ(scope.trace.timeAxis().placeOf(0), 0.5);
                EXPECT_NEAR(scope.trace.levelAt(1, 500).value(), 6000 / 32768.0, 0.003) << frequency;
                static double first[2];
                for (const std::int32_t ch : {0, 1}) {
                    const double level = scope.trace.levelAt(ch, 700.0).value();
                    first[ch] = block == 0 ? level : first[ch];
                    EXPECT_NEAR(level, first[ch], 0.005) << frequency << " " << block;
                }
            }
        }
    }
}

TEST(SteadyTrigger, SaysWhereTheViewIsPartlyEmptyAndKeepsWhatItHad) {
    Scope scope;
    scope.controls.sweep = 1000;
    scope.controls.steady = 1;
    scope.show(step(20), constant(100));
    EXPECT_EQ(scope.draw(), "");
    EXPECT_EQ(scope.trace.steadyState(), SteadyState::Cut);
    EXPECT_FALSE(scope.trace.levelAt(1, 479).has_value());
    EXPECT_EQ(scope.trace.levelAt(1, 482), 100 / 32768.0);
    scope.show(constant(100), constant(200));
    scope.draw();
    EXPECT_EQ(scope.trace.steadyState(), SteadyState::Held);
    EXPECT_EQ(scope.trace.levelAt(1, 482), 100 / 32768.0);
}

TEST(ScopeTrace, HostileValuesNeverReachThePainter) {
    Scope scope;
    scope.show(sawtooth, constant(0));
    for (const double value : {0.0, 1.0, -1.0, 1e300, -1e300, 2147483648.0, HUGE_VAL, -HUGE_VAL, kNan}) {
        for (const double sweep : {value, 10.0}) {
            for (const std::int32_t steady : {0, 1}) {
                scope.controls = {
                    .offset = {value, 0}, .trigger = {value, 0}, .sweep = sweep, .steady = steady};
                scope.draw();
                for (const PlotPoint& point : scope.trace.line(0))
                    ASSERT_LT(std::abs(point.x) + std::abs(point.y), 1e7) << value;
            }
        }
    }
}

} // namespace
} // namespace sonotrace
