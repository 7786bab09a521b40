#include "sweep/SweepController.h"

#include "generator/OutputLevels.h"
#include "support/ToolWindow.h"

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

class SweepWindowTest : public WindowTest {
protected:
    void launch() {
        controller_ = std::make_unique<SweepController>(bench_.sweep, levels_, preferences_);
        controller_->awakeFromNib();
        window_ = &controller_->window();
    }

    RenderBench bench_;
    OutputLevels levels_{bench_.bank, bench_.sweep};
    std::unique_ptr<SweepController> controller_;
};

TEST_F(SweepWindowTest, ParametersAreWhatIsStoredUntilTheirOwnControlIsChanged) {
    preferences_.setFloat("sweepStart", 1000.1);
    preferences_.setDouble("sweepAmplitudeLeft", 7);
    launch();
    EXPECT_EQ(bench_.sweep.startFrequency, static_cast<double>(1000.1F)) << "stored in single precision";
    EXPECT_EQ(text("amplitudeLeftReadout"), "100.0 %");
    type("rate", "111 Hz");
    EXPECT_EQ(bench_.sweep.rate, 111);
    find<QSlider>("amplitudeRight").setValue(333);
    EXPECT_EQ(bench_.sweep.amplitudeRight, 0.333);
    EXPECT_EQ(bench_.sweep.amplitudeLeft, 7) << "more than its slider can show";
    const std::pair<const char*, std::atomic<std::int32_t>&> switches[] = {
        {"enabledCheck", bench_.sweep.enabled},
        {"leftEnabled", bench_.sweep.leftEnabled},
        {"rightEnabled", bench_.sweep.rightEnabled},
        {"reverse", bench_.sweep.reverse},
        {"logSweep", bench_.sweep.log}};
    for (const auto& [name, parameter] : switches) {
        click(name);
        for (const auto& [other, value] : switches)
            EXPECT_EQ(value, other == name ? 1 : 0) << name << ", " << other;
        EXPECT_EQ(text("rateUnit"), bench_.sweep.log ? "× 0.046417 %/s" : "Hz/s");
        click(name);
    }
}

TEST_F(SweepWindowTest, APassIsStoredAsTheRenderHasIt) {
    launch();
    type("startFreq", "20");
    type("endFreq", "1020");
    type("rate", "5000");
    EXPECT_EQ(bench_.sweep.endFrequency, 1020);
    click("oneShot");
    click("rightEnabled");
    bench_.render();
    const QString expected = "One-shot pass at 586.9 Hz – silent: the amplitude is 0";
    EXPECT_TRUE(QTest::qWaitFor([&] { return text("sweepState") == expected; }));
    for (const int enabled : {1, 0}) {
        controller_->applicationWillTerminate();
        EXPECT_EQ(preferences_.integerValue("sweepEnabled"), enabled) << "in the pass, and after it";
        bench_.render();
    }
}

TEST_F(SweepWindowTest, ThePassTakesAsLongAsItsStepsAdded) {
    launch();
    click("reverse");
    const std::tuple<const char*, const char*, const char*, const char*, const char*> passes[] = {
        {"20", "20000", "90000", "A pass takes 0.444 s", "60.24 octaves/s. A pass takes 0.331 s"},
        {"8000", "1000", "1000", "A pass takes 14 s", "0.6697 octaves/s. A pass takes 8.96 s"},
        {"0", "100", "5000", "A pass takes 0.04 s", "3.348 octaves/s. A pass takes 4.83 s"},
        {"9", "9", "-5", "A pass never ends", "A pass never ends"}};
    for (const auto& [start, end, rate, linear, logarithmic] : passes) {
        type("startFreq", start);
        type("endFreq", end);
        type("rate", rate);
        for (const char* text : {logarithmic, linear}) {
            click("logSweep");
            EXPECT_EQ(this->text("sweepPass"), text) << start;
        }
    }
}

} // namespace
} // namespace sonotrace
