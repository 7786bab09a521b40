#include "sweep/SweepController.h"

#include "support/ToolWindow.h"

#include <QCheckBox>
#include <QPushButton>

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

class SweepWindowTest : public StoreTest {
protected:
    SweepWindowTest() {
        preferences_.setFloat("sweepStart", 20);
        preferences_.setFloat("sweepEnd", 20000);
        preferences_.setFloat("sweepRate", 90000);
    }

    void launch() {
        controller_ = std::make_unique<SweepController>(bench_.sweep, preferences_);
        controller_->awakeFromNib();
    }

    template <typename Control>
    Control& find(const char* name) {
        return findControl<Control>(controller_->window(), name);
    }

    void type(const char* field, const char* text) { find<QLineEdit>(field).setText(text); }
    QString state() { return find<QLabel>("sweepState").text(); }

    RenderBench bench_;
    std::unique_ptr<SweepController> controller_;
};

TEST_F(SweepWindowTest, AFirstOpeningLoadsTheFirstRunValuesAndIsSilent) {
    bench_.sweep.amplitudeLeft = 1;
    bench_.sweep.enabled = 1;
    launch();
    EXPECT_EQ(bench_.sweep.startFrequency, 20);
    EXPECT_EQ(bench_.sweep.endFrequency, 20000);
    EXPECT_EQ(bench_.sweep.rate, 90000);
    EXPECT_EQ(bench_.sweep.amplitudeLeft, 0);
    EXPECT_EQ(bench_.sweep.enabled, 0);
    EXPECT_EQ(find<QLineEdit>("rate").text(), "90000");
    EXPECT_EQ(find<QLabel>("amplitudeLeftReadout").text(), "0.0 %");
    EXPECT_EQ(state(), "Off");
    expectUsableWindow(controller_->window());
    find<QCheckBox>("enabledCheck").click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return state() == "Running at 0.0 Hz – silent: no channel is on"; }));
    find<QCheckBox>("rightEnabled").click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return state() == "Running at 0.0 Hz – silent: the amplitude is 0"; }));
}

TEST_F(SweepWindowTest, EveryKeystrokeCountsAndAnyTextIsTaken) {
    launch();
    const std::pair<const char*, std::atomic<double>&> fields[] = {{"startFreq", bench_.sweep.startFrequency},
                                                                   {"endFreq", bench_.sweep.endFrequency},
                                                                   {"rate", bench_.sweep.rate}};
    for (const auto& [name, parameter] : fields) {
        auto& field = find<QLineEdit>(name);
        field.clear();
        EXPECT_EQ(parameter, 0) << name;
        for (const double typed : {1, 15, 150, 1500}) {
            QTest::keyClick(&field, typed == 1 ? '1' : typed == 15 ? '5' : '0');
            EXPECT_EQ(parameter, typed) << name;
        }
        parameter = 3;
        QTest::keyClick(&field, Qt::Key_Return);
        EXPECT_EQ(parameter, 1500) << name;
    }
    for (const char* text : {"nan", "1e308", "-5", "", "1e999", "-"}) {
        for (const char* name : {"startFreq", "endFreq", "rate"})
            type(name, text);
        bench_.render();
    }
    type("startFreq", "441 Hz");
    EXPECT_EQ(bench_.sweep.startFrequency, 441) << "what stands behind a number is ignored";
}

TEST_F(SweepWindowTest, SwitchesAndSlidersWriteTheirOwnParameterAtOnce) {
    launch();
    const std::pair<const char*, std::atomic<std::int32_t>&> switches[] = {
        {"enabledCheck", bench_.sweep.enabled},
        {"leftEnabled", bench_.sweep.leftEnabled},
        {"rightEnabled", bench_.sweep.rightEnabled},
        {"reverse", bench_.sweep.reverse},
        {"logSweep", bench_.sweep.log}};
    for (const auto& [name, parameter] : switches) {
        find<QCheckBox>(name).click();
        for (const auto& [other, value] : switches)
            EXPECT_EQ(value, other == name ? 1 : 0) << name << ", " << other;
        find<QCheckBox>(name).click();
        EXPECT_EQ(parameter, 0) << name;
    }
    testing::internal::CaptureStderr();
    find<QSlider>("amplitudeRight").setValue(333);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "amplitudeRight\n") << "no do";
    EXPECT_EQ(bench_.sweep.amplitudeRight, 0.333);
    EXPECT_EQ(bench_.sweep.amplitudeLeft, 0);
    EXPECT_EQ(find<QLabel>("amplitudeRightReadout").text(), "33.3 %");
    EXPECT_EQ(find<QLabel>("rateUnit").text(), "Hz/s");
    find<QCheckBox>("logSweep").click();
    EXPECT_EQ(find<QLabel>("rateUnit").text(), "× 0.046417 %/s");
}

TEST_F(SweepWindowTest, AOneShotPassIsStoredAsTheRenderHasItAndTheBoxDoesNotFollow) {
    launch();
    type("endFreq", "1020");
    type("rate", "5000");
    find<QPushButton>("oneShot").click();
    bench_.render();
    EXPECT_FALSE(find<QCheckBox>("enabledCheck").isChecked());
    EXPECT_TRUE(QTest::qWaitFor([&] { return state().startsWith("One-shot pass at 586.9 Hz"); }))
        << state().toStdString();
    controller_->applicationWillTerminate();
    EXPECT_EQ(preferences_.integerValue("sweepEnabled"), 1) << "in the pass";
    bench_.render();
    EXPECT_TRUE(QTest::qWaitFor([&] { return state() == "Off"; }));
    controller_->applicationWillTerminate();
    EXPECT_EQ(preferences_.integerValue("sweepEnabled"), 0) << "after it";

    find<QCheckBox>("enabledCheck").click();
    find<QPushButton>("oneShot").click();
    bench_.render(2);
    EXPECT_TRUE(find<QCheckBox>("enabledCheck").isChecked());
    controller_->applicationWillTerminate();
    EXPECT_EQ(preferences_.integerValue("sweepEnabled"), 0);
}

TEST_F(SweepWindowTest, EverythingIsAsItWasAfterARestartAndWildPreferencesAreSurvived) {
    launch();
    type("startFreq", "1000.1");
    find<QSlider>("amplitudeLeft").setValue(333);
    for (const char* name : {"enabledCheck", "rightEnabled", "logSweep"})
        find<QCheckBox>(name).click();
    controller_->window().resize(700, 480);
    controller_->applicationWillTerminate();
    launch();
    EXPECT_EQ(find<QLineEdit>("startFreq").text(), "1000.1");
    EXPECT_EQ(bench_.sweep.startFrequency, static_cast<double>(1000.1F)) << "stored in single precision";
    EXPECT_EQ(bench_.sweep.amplitudeLeft, static_cast<double>(0.333F));
    EXPECT_EQ(find<QLabel>("amplitudeLeftReadout").text(), "33.3 %");
    for (const auto& [name, on] :
         {std::pair{"enabledCheck", true}, {"rightEnabled", true}, {"leftEnabled", false}})
        EXPECT_EQ(find<QCheckBox>(name).isChecked(), on) << name;
    EXPECT_EQ(bench_.sweep.log, 1);
    EXPECT_EQ(controller_->window().size(), QSize(700, 480));

    preferences_.setDouble("sweepAmplitudeLeft", 7);
    preferences_.setDouble("sweepStart", -1e300);
    preferences_.setInteger("sweepReverse", -3);
    launch();
    EXPECT_EQ(bench_.sweep.amplitudeLeft, 7) << "the store's value, not the slider's";
    EXPECT_EQ(bench_.sweep.reverse, 1);
    EXPECT_EQ(find<QLabel>("amplitudeLeftReadout").text(), "100.0 %");
    bench_.render();
}

} // namespace
} // namespace sonotrace
