#include "scope/ScopeTable.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <functional>

namespace sonotrace {
namespace {

using Signal = std::function<int(int)>;

struct Scope {
    ScopeControls controls;
    ScopeCapture capture{controls, [] {}};
    ScopeTrace trace;

    void show(const Signal& left, const Signal& right) {
        std::vector<std::int16_t> buffer;
        for (int i = 0; i < 11025; ++i) {
            buffer.push_back(static_cast<std::int16_t>(left(i)));
            buffer.push_back(static_cast<std::int16_t>(right(i)));
        }
        capture.capture(buffer);
        capture.capture(std::vector<std::int16_t>(buffer.size())); // a block is two buffers
        trace.build(controls, capture, 1000, 700);
    }

    std::string table(const Calibration& calibration = {}) {
        return scopeTable({}, {}, trace, capture, calibration);
    }
};

/// Low until sample `edge`, then high: upside down it triggers there.
Signal fallingAt(int edge) {
    return [edge](int i) { return i < edge ? 8192 : -16384; };
}

int silence(int) {
    return 0;
}

bool has(const std::string& table, const std::string& line) {
    return table.find("\n" + line + "\n") != std::string::npos;
}

TEST(ScopeTable, HoldsWhatWasCapturedFromTheTriggerOnTheTimeRuler) {
    Scope scope;
    scope.controls.range = {10, 1}; // of the picture only
    scope.show(fallingAt(4410), fallingAt(6615));
    const std::string table = scope.table();
    EXPECT_TRUE(has(table, "time_s,left_fs,right_fs"));
    EXPECT_TRUE(has(table, "-0.000022676,-0.500000000,0.250000000")) << "the first sample that is low";
    EXPECT_TRUE(has(table, "0.000000000,-0.500000000,0.250000000")) << "the picture begins behind it";
    EXPECT_TRUE(has(table, "# Time 0 of the right trace: 0.050000000 s"));
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n') - 11025, 7)
        << "head, names, a quarter of a second";

    scope.controls.steady = 1;
    scope.trace.build(scope.controls, scope.capture, 1000, 700);
    EXPECT_NE(scope.table().find("\n-0.00001133"), std::string::npos)
        << "clipped alike on both sides it crosses halfway between the samples";
}

TEST(ScopeTable, IsInTheUnitOfTheDevice) {
    Scope scope;
    scope.show(fallingAt(4410), silence);
    // A full-scale sine of 1 V RMS has a peak of 1.414 V.
    EXPECT_TRUE(has(scope.table({LevelUnit::dBV, 0.0}), "time_s,left_v,right_v"));
    EXPECT_TRUE(has(scope.table({LevelUnit::V, 1.0}), "0.000000000,-0.707106781,0.000000000"));
    EXPECT_TRUE(has(scope.table({LevelUnit::Pa, 1.0}), "time_s,left_pa,right_pa"));
}

TEST(ScopeTable, IsOfTheBlockThatATriggerHolds) {
    Scope scope;
    scope.show(silence, silence);
    EXPECT_TRUE(has(scope.table(), "0.000000000,0.000000000,0.000000000"))
        << "never triggered: the last block";
    scope.show(fallingAt(4410), fallingAt(6615));
    const std::string held = scope.table();
    scope.show(silence, silence);
    EXPECT_EQ(scope.table(), held);
    scope.show(fallingAt(4410), silence);
    EXPECT_NE(scope.table().find("# Blocks: "), std::string::npos) << "the right one is older";
}

/// A page has another size, and the log of its searches is not the user's.
TEST(ScopeTrace, IsLaidOutForAnotherSizeAsIfItHadBeenBuiltForIt) {
    for (const std::int32_t steady : {0, 1}) {
        Scope scope;
        scope.controls.steady = steady;
        scope.controls.offset = {10, -20};
        scope.show(fallingAt(4410), fallingAt(6615));
        ScopeTrace other = scope.trace;
        testing::internal::CaptureStderr();
        other.layOut(scope.controls.offset, 640, 480);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        scope.trace.build(scope.controls, scope.capture, 640, 480);
        for (const std::int32_t ch : {0, 1}) {
            const auto line = scope.trace.line(ch);
            const auto same = other.line(ch);
            EXPECT_TRUE(std::equal(line.begin(), line.end(), same.begin(), same.end())) << steady << ch;
        }
    }
}

} // namespace
} // namespace sonotrace
