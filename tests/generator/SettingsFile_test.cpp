#include "generator/SettingsFile.h"

#include <gtest/gtest.h>

#include <cstring>

namespace sonotrace {
namespace {

TEST(SettingsFile, LaysOutSixArraysOfAHundredAndComesBackFromAnyLength) {
    SettingsOfAll all;
    for (int i = 0; i < kGeneratorCount; ++i)
        all[static_cast<std::size_t>(i)] = {1000.1 + i, -0.1 * i, 1.0 / (i + 1), 1e300 * i, i - 1, i % 2};
    const auto block = encodeSettingsFile(all);
    const auto at = [&block]<typename Number>(std::size_t place, Number value) {
        std::memcpy(&value, &block[place], sizeof value);
        return value;
    };
    EXPECT_EQ(at(0 + 8 * 12, 0.0), 1012.1);
    EXPECT_EQ(at(0 + 8 * 13, 1.0), 0.0);
    EXPECT_EQ(at(800 + 8 * 3, 0.0), -0.1 * 3);
    EXPECT_EQ(at(1600 + 8 * 2, 0.0), 1.0 / 3);
    EXPECT_EQ(at(2400 + 8, 0.0), 1e300);
    EXPECT_EQ(at(3200, 0), -1);
    EXPECT_EQ(at(3600 + 4 * 11, 0), 1);
}

} // namespace
} // namespace sonotrace
