#include "base/CsvText.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace sonotrace {
namespace {

TEST(CsvText, HasNothingThatOtherProgramsStumbleOver) {
    CsvText text;
    text.comment("device", "two\nlines\tof it");
    text.columns(std::array<std::string, 3>{"time_s", "left_fs", "right_fs"});
    text.value(-0.0125, 6);
    text.value(std::numeric_limits<double>::quiet_NaN(), 3);
    text.value(-std::numeric_limits<double>::infinity(), 3);
    text.endRow();
    text.value(1.0 / 3.0, 3);
    text.value(-0.0004, 3);
    text.value(-std::numeric_limits<double>::max(), 17);
    text.endRow();
    EXPECT_TRUE(text.text().starts_with("# device: two lines of it\n"
                                        "time_s,left_fs,right_fs\n"
                                        "-0.012500,,\n"
                                        "0.333,0.000,-17976931"));
    EXPECT_TRUE(text.text().ends_with(".00000000000000000\n"));
}

} // namespace
} // namespace sonotrace
