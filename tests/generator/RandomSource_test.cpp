#include "generator/RandomSource.h"

#include <gtest/gtest.h>

#include <vector>

namespace sonotrace {
namespace {

TEST(RandomSource, GivesThePublishedSequenceOfTheSeed4357) {
    RandomSource source;
    std::vector<std::uint32_t> values(1000);
    source.draw(std::span(values).first(3));
    source.draw(std::span(values).subspan(3));
    EXPECT_EQ(std::vector(values.begin(), values.begin() + 5),
              (std::vector<std::uint32_t>{3510405877U, 4290933890U, 2191955339U, 564929546U, 152112058U}));
    EXPECT_EQ(values[999], 1309179303U);
}

} // namespace
} // namespace sonotrace
