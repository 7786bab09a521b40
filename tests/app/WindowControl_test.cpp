#include "app/WindowControl.h"

#include "generator/SettingsFile.h"

#include "support/ToolWindow.h"

#include <QAction>
#include <QCheckBox>
#include <QMainWindow>

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

namespace sonotrace {
namespace {

class WindowControlTest : public testing::Test {
protected:
    WindowControlTest() { qputenv("XDG_CONFIG_HOME", folder_.path().toUtf8()); }

    void launch() {
        control_.reset();
        preferences_ = std::make_unique<Preferences>();
        control_ = std::make_unique<WindowControl>(system_, *preferences_);
        control_->awakeFromNib();
    }

    /// Quits as the application does, and starts again.
    void relaunch() {
        control_->applicationWillTerminate();
        launch();
    }

    template <typename Control>
    Control& find(const QString& name) {
        return findControl<Control>(control_->window(), name);
    }

    void type(const char* field, const QString& text) { find<QLineEdit>(field).setText(text); }

    void choose(const char* menuItem, const QString& path, QString* title = nullptr) {
        answerFilePanel(path, title);
        find<QAction>(menuItem).trigger();
    }

    GeneratorSettings slot(int i) { return control_->bank().slots[static_cast<std::size_t>(i)].load(); }
    QString notice() { return find<QLabel>("noticeLabel").text(); }
    QString path(const char* name) const { return folder_.filePath(name); }

    QByteArray contents(const QString& file) {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray("(unreadable)");
    }

    QTemporaryDir folder_;
    LoopbackSystem system_{LoopbackSystem::Clock::Manual};
    std::unique_ptr<Preferences> preferences_;
    std::unique_ptr<WindowControl> control_;
};

TEST_F(WindowControlTest, TheFirstRunOffersThirteenSinesAndWritesEveryWindowsDefaults) {
    launch();
    EXPECT_EQ(slot(12).frequency, 2200);
    EXPECT_EQ(slot(12).volumeRight, 1);
    EXPECT_EQ(slot(5).enabled, 0);
    const Preferences stored;
    EXPECT_EQ(stored.floatValue("sweepEnd"), 20000.0F);
    EXPECT_EQ(stored.doubleValue("soundInputVolume"), 700.0);
    EXPECT_EQ(stored.integerValue("Freq0"), 0) << "the bank is stored at the end";

    // Phases and switches alone do not make a store.
    writePreferences("Phase3=90\nEnabled2=1\n");
    launch();
    EXPECT_EQ(slot(3).frequency, 1300);
    EXPECT_EQ(slot(3).phase, 90);
    EXPECT_EQ(slot(2).enabled, 1);
}

TEST_F(WindowControlTest, ThePanelStandsWhereItShould) {
    launch();
    const std::tuple<const char*, QRect, int> controls[] = {
        {"enabled12", {14, 400, 40, 20}, 112},       {"waveform12", {64, 400, 110, 25}, 212},
        {"frequency12", {200, 400, 85, 20}, 312},    {"phase12", {300, 400, 85, 20}, 412},
        {"volumeLeft12", {400, 400, 125, 25}, 512},  {"readoutLeft12", {525, 403, 40, 20}, 0},
        {"volumeRight12", {570, 400, 125, 25}, 612}, {"readoutRight12", {695, 403, 40, 20}, 0},
        {"frequency0", {200, 40, 85, 20}, 300}};
    for (const auto& [name, frame, tag] : controls) {
        EXPECT_EQ(find<QWidget>(name).geometry(), frame) << name;
        EXPECT_EQ(find<QWidget>(name).property("tag").toInt(), tag) << name;
    }
    EXPECT_EQ(find<QLineEdit>("frequency0").text(), "1000.00 ");
    EXPECT_EQ(find<QWidget>("labelRight").pos(), QPoint(570, 20));
    QStringList titles;
    for (int i = 0; i < find<QComboBox>("waveform0").count(); ++i)
        titles << find<QComboBox>("waveform0").itemText(i);
    EXPECT_EQ(titles,
              (QStringList{"Sine", "Square", "Sawtooth", "Triangle", "White", "Pink", "Pulse", "Off"}));
    expectUsableWindow(control_->window());
}

TEST_F(WindowControlTest, ThePollClampsWhatIsTypedAndLeavesTheTextAlone) {
    launch();
    using Entry = std::tuple<const char*, double, const char*, double>;
    const Entry entries[] = {
        {"0", 0.1, "720", 360},     {"50000", 22000, "-361", -360}, {"440.25 Hz", 440.25, " 12", 12},
        {"abc", 0.1, "", 0},        {"nan", 0.1, "inf", 0},         {"1e308", 22000, "-1e999", -360},
        {"1e-400", 0.1, "0x10", 0}, {"-5", 0.1, "1e2", 100},        {".5", 0.5, "+.25", 0.25}};
    for (const auto& [frequency, taken, phase, takenPhase] : entries) {
        type("frequency4", frequency);
        type("phase4", phase);
        control_->HalfSecTimer();
        EXPECT_EQ(slot(4).frequency, taken) << frequency;
        EXPECT_EQ(slot(4).phase, takenPhase) << phase;
        EXPECT_EQ(find<QLineEdit>("frequency4").text(), frequency);
    }
    find<QCheckBox>("enabled4").click();
    find<QComboBox>("waveform4").setCurrentIndex(7);
    EXPECT_EQ(slot(4).enabled, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return slot(4).enabled == 1; })) << "the timer polls by itself";
    EXPECT_EQ(slot(4).waveform, 7);
}

TEST_F(WindowControlTest, AVolumeSliderActsAtOnceOnItsChannelAlone) {
    launch();
    auto& slider = find<QSlider>("volumeRight3");
    slider.setValue(slider.maximum() / 2);
    EXPECT_EQ(slot(3).volumeRight, 0.5);
    EXPECT_EQ(slot(3).volumeLeft, 1.0);
    EXPECT_EQ(slot(2).volumeRight, 1.0);
    EXPECT_EQ(find<QLabel>("readoutRight3").text(), "50");
    slider.setValue(slider.maximum() - 1);
    EXPECT_EQ(slot(3).volumeRight, 0.999);
    EXPECT_EQ(find<QLabel>("readoutRight3").text(), "99");
}

TEST_F(WindowControlTest, EverythingIsAsItWasAfterARestart) {
    launch();
    type("frequency7", "1000.1");
    type("phase7", "-45.5");
    find<QComboBox>("waveform7").setCurrentIndex(3);
    find<QSlider>("volumeLeft7").setValue(333);
    control_->HalfSecTimer();
    find<QCheckBox>("enabled7").click(); // not polled yet: the box itself is stored
    control_->window().resize(700, 580);
    relaunch();
    EXPECT_EQ(slot(7).frequency, static_cast<double>(1000.1F)) << "stored in single precision";
    EXPECT_EQ(slot(7).phase, -45.5);
    EXPECT_EQ(slot(7).waveform, 3);
    EXPECT_EQ(slot(7).volumeLeft, static_cast<double>(0.333F));
    EXPECT_EQ(slot(7).enabled, 1);
    EXPECT_EQ(find<QLineEdit>("frequency7").text(), "1000.10 ");
    EXPECT_EQ(control_->window().size(), QSize(700, 580));
    EXPECT_TRUE(contents(Preferences::defaultPath()).contains("Freq7=1000.1\n"));
}

TEST_F(WindowControlTest, PreferencesOfAnyKindAreSurvivedAndClamped) {
    writePreferences(
        "Freq0=1e300\nFreq1=nan\nFreq2=-7\nFreq3=@Variant(\\0\\0)\nPhase0=1e9\nVolL0=7\nVolR0=-1\n"
        "GenType0=99\nGenType1=-3\nGenType2=1e99\nEnabled0=12345678901234\nEnabled1=-1\n"
        "MAIN_outputPopup=77\nGENERATOR_WINDOW_FRAME=2147483647 -99999 2147483647 2000000000\n");
    launch();
    for (const int i : {0, 1, 2, 3})
        EXPECT_EQ(slot(i).frequency, i == 0 ? 22000 : 1) << i;
    EXPECT_EQ(slot(0).phase, 360);
    EXPECT_EQ(slot(0).volumeLeft, 1);
    EXPECT_EQ(slot(0).volumeRight, 0);
    EXPECT_EQ(slot(0).waveform, 7);
    EXPECT_EQ(slot(1).waveform, 0);
    EXPECT_EQ(slot(1).enabled, 0);
    EXPECT_EQ(find<QComboBox>("outputPopup").currentIndex(), 0);
    system_.advance(44100);
    writePreferences("\xff\xfe\0garbage\n[[[\n=\n%%%");
    launch();
    EXPECT_EQ(slot(12).frequency, 2200);
}

TEST_F(WindowControlTest, ARecordingFromTheMenuIsWhatIsPlayed) {
    writePreferences(
        "Freq0=997\nVolL0=1\nVolR0=0.5\nEnabled0=1\nFreq1=333\nVolL1=1\nGenType1=5\nEnabled1=1\n");
    launch();
    auto& start = find<QAction>("doRecordingFileMenu");
    auto& stop = find<QAction>("doStopRecordingFileMenu");
    choose("doRecordingFileMenu", QString());
    EXPECT_TRUE(start.isEnabled());
    EXPECT_FALSE(stop.isEnabled());
    QString title;
    choose("doRecordingFileMenu", path("take"), &title);
    EXPECT_EQ(title, "Choose file to save recording to");
    EXPECT_FALSE(start.isEnabled());
    EXPECT_TRUE(stop.isEnabled());
    for (int i = 0; i < 30; ++i) {
        system_.advance(22050);
        control_->HalfSecTimer();
    }
    EXPECT_TRUE(find<QLabel>("recordingLabel").text().contains("take.wav  0:14"))
        << find<QLabel>("recordingLabel").text().toStdString();
    stop.trigger();
    EXPECT_TRUE(start.isEnabled());

    RenderBench expected;
    expected.set(0, {997, 0, 1, 0.5, 0, 1});
    expected.set(1, {333, 0, 1, 0, 5, 1});
    const auto samples = expected.render(30 * 22050 / 5000);
    const auto size = static_cast<qsizetype>(samples.size() * 2);
    EXPECT_TRUE(contents(path("take.wav")).mid(44) ==
                QByteArray(reinterpret_cast<const char*>(samples.data()), size));
}

TEST_F(WindowControlTest, ASettingsFileComesBackExactlyAndOpeningSynchronisesThePhasesEvenWhenCancelled) {
    launch();
    const auto phaseZero = [this] { // a first buffer that begins at phase 0 begins with the first table step
        QFile::remove(path("phase.wav"));
        choose("doRecordingFileMenu", path("phase.wav"));
        system_.advance(20000);
        control_->doStopRecordingFileMenu();
        return contents(path("phase.wav")).mid(44 + 4 * 4 * 5000 - 20000, 400);
    };
    type("frequency0", "1000.123456789012");
    find<QCheckBox>("enabled0").click();
    control_->HalfSecTimer();
    system_.advance(20000);
    QString title;
    choose("menuSaveSettings", path("bench settings"), &title);
    EXPECT_EQ(title, "Settings file to save");
    EXPECT_EQ(QFileInfo(path("bench settings")).size(), 4000);
    type("frequency0", "5");
    find<QSlider>("volumeLeft0").setValue(3);
    find<QCheckBox>("enabled0").click();
    choose("menuOpenSettings", path("bench settings"), &title);
    EXPECT_EQ(title, "Settings file to open");
    EXPECT_EQ(slot(0).frequency, 1000.123456789012);
    EXPECT_EQ(slot(0).volumeLeft, 1.0);
    EXPECT_EQ(slot(0).enabled, 1);
    EXPECT_TRUE(find<QCheckBox>("enabled0").isChecked());
    control_->HalfSecTimer();
    EXPECT_EQ(slot(0).frequency, 1000.123456789012) << "the field shows all of it";
    const QByteArray first = phaseZero();
    EXPECT_NE(phaseZero(), first);
    choose("menuOpenSettings", QString());
    EXPECT_EQ(phaseZero(), first);
}

TEST_F(WindowControlTest, SettingsFilesAreTakenAsTheyAreAndTheNextPollClampsWhatItPolls) {
    launch();
    SettingsOfAll wild{};
    wild[0] = {1e300, -1e300, 7.5, -3, 42, 9};
    wild[1] = {std::nan(""), std::nan(""), std::nan(""), 0, -1, -1};
    const auto block = encodeSettingsFile(wild);
    std::ofstream(path("wild").toStdString(), std::ios::binary)
        .write(reinterpret_cast<const char*>(block.data()), 4000);
    control_->openSettings(path("wild"));
    EXPECT_EQ(slot(0).frequency, 1e300);
    EXPECT_EQ(slot(0).volumeLeft, 7.5);
    EXPECT_EQ(slot(0).waveform, 42);
    EXPECT_EQ(find<QLabel>("readoutLeft0").text(), "750");
    system_.advance(44100);
    control_->HalfSecTimer();
    EXPECT_EQ(slot(0).frequency, 22000);
    EXPECT_EQ(slot(0).phase, -360);
    EXPECT_EQ(slot(0).volumeLeft, 7.5);
    EXPECT_EQ(slot(1).frequency, 0.1);
    EXPECT_EQ(slot(2).frequency, 0.1) << "zeros in the file";
    system_.advance(44100);
}

TEST_F(WindowControlTest, FilesThatCannotBeReadOrWrittenAreSaid) {
    launch();
    control_->openSettings(path("not there"));
    EXPECT_TRUE(notice().startsWith("not there cannot be read")) << notice().toStdString();
    EXPECT_EQ(slot(0).frequency, 0);
    control_->openSettings(folder_.path());
    EXPECT_TRUE(notice().contains("cannot be read"));
    QFile empty(path("empty"));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    control_->openSettings(path("empty"));
    EXPECT_TRUE(notice().contains("too short")) << notice().toStdString();
    EXPECT_FALSE(control_->startRecording(path("no folder/take.wav")));
    EXPECT_EQ(notice(), "take.wav cannot be created");
    EXPECT_TRUE(find<QAction>("doRecordingFileMenu").isEnabled());
    if (QFile::exists("/dev/full")) {
        EXPECT_TRUE(control_->startRecording("/dev/full"));
        system_.advance(44100);
        control_->HalfSecTimer();
        EXPECT_TRUE(notice().contains("is the disk full")) << notice().toStdString();
    }
}

} // namespace
} // namespace sonotrace
