#include "waterfall/WaterfallMeasurement.h"

#include <gtest/gtest.h>
#include <limits>

namespace sonotrace {
namespace {

TEST(WaterfallMeasurement, TellsTheFrequencyAndTheTimeSinceTheRightClick) {
    WaterfallParameters parameters;
    parameters.waterfallStartFreq = 100.0;
    parameters.waterfallEndFreq = 1300.0;
    WaterfallMeasurement measurement(parameters);
    testing::internal::CaptureStderr();
    EXPECT_EQ(measurement.mouseDown(30.0, 0.0, 600.0).deltaX, 30.0F) << "the reference is 0 at first";
    measurement.rightMouseDown(150.0, 7.0);
    const WaterfallClick click = measurement.mouseDown(250.0, 30.25, 600.0);
    EXPECT_EQ(click.frequency, 160.5F);
    EXPECT_EQ(click.deltaX, 100.0F);
    EXPECT_EQ(measurement.setMouseHz(click.frequency, click.deltaX), "160 Hz  18576 mSec");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "mouseDown 0  100  1200  2  \n"
              "rightMouseDown 150 7\n"
              "mouseDown 30.25  160.5  1200  2  \n"
              "setMouseHz 160.5 Hz deltaX 100  pixels/sec 5.3833   milliseconds: 18576 \n");

    parameters.waterfallFftLen = 1024.0; // 3 * 44100 / 1024 = 129.19921875 columns a second
    parameters.waterfallSpeedup = 3;
    EXPECT_EQ(measurement.setMouseHz(-0.9F, -100.0F), "0 Hz  -773.998 mSec");
}

TEST(WaterfallMeasurement, AnswersAClickBeforeThereIsAPicture) {
    WaterfallParameters parameters;
    parameters.waterfallStartFreq = std::numeric_limits<double>::quiet_NaN();
    parameters.waterfallEndFreq = 1e300;
    parameters.waterfallSpeedup = 0;
    WaterfallMeasurement measurement(parameters);
    const WaterfallClick click = measurement.mouseDown(10.0, 20.0, 0.0);
    EXPECT_EQ(measurement.setMouseHz(click.frequency, click.deltaX), "-2147483648 Hz  inf mSec");
}

} // namespace
} // namespace sonotrace
