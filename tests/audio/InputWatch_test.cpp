#include "audio/InputWatch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace sonotrace {
namespace {

TEST(InputWatch, FindsWhatSpoilsThePicture) {
    const struct {
        std::vector<std::int16_t> frames; ///< left, right, ...
        bool clips, overflows;
        ChannelFold fold = ChannelFold::Sum;
    } cases[] = {{{32767, 0, 32767, 0, 0, 0, 32767, 0}, false, false}, // peaks that just fit
                 {{0, 32767, 0, 32767, 0, 32767}, true, false},
                 {{-32768, 0, 32767, 0, -32768, 0}, true, false},
                 {{16384, 16383, -16384, -16384}, false, false},
                 {{16384, 16384}, false, true},
                 {{-16385, -16384}, false, true},
                 {{16384, 16384}, false, false, ChannelFold::Difference},
                 {{-16385, 16384}, false, true, ChannelFold::Difference},
                 {{16384, 32767}, false, false, ChannelFold::Right}};
    for (const auto& tried : cases) {
        InputWatch watch;
        watch.setFold(tried.fold);
        watch.add(std::vector<std::int16_t>(88200)); // a second of nothing
        EXPECT_TRUE(std::isinf(watch.findings().sinceClipping) && std::isinf(watch.findings().sinceOverflow));
        EXPECT_DOUBLE_EQ(watch.findings().sinceSound, 1.0);
        watch.add(tried.frames);
        watch.add(std::vector<std::int16_t>(22050));
        const InputFindings findings = watch.findings();
        const auto row = &tried - cases;
        EXPECT_DOUBLE_EQ(findings.sinceSound, 0.25) << row;
        EXPECT_EQ(findings.sinceClipping, tried.clips ? 0.25 : HUGE_VAL) << row;
        EXPECT_EQ(findings.sinceOverflow, tried.overflows ? 0.25 : HUGE_VAL) << row;
    }
}

} // namespace
} // namespace sonotrace
