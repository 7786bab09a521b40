#include "app/WindowControl.h"

#include "generator/SettingsFile.h"

#include "support/DeviceListSystem.h"
#include "support/ToolWindow.h"

#include <QAction>
#include <QMainWindow>

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

namespace sonotrace {
namespace {

constexpr std::pair<const char*, const char*> kTools[] = {{"menuSweep", "SweepWindow"},
                                                          {"menuSpectrum", "SpectrumWindow"},
                                                          {"menuWaterfall", "WaterfallWindow"},
                                                          {"menuWScope", "ScopeWindow"}};

class WindowControlTest : public WindowTest {
protected:
    WindowControlTest() { qputenv("XDG_CONFIG_HOME", folder_.path().toUtf8()); }

    void launch(const std::vector<DeviceDescription>& devices = {device(1, "Speaker", 2, 2),
                                                                 device(2, "Line", 2, 2)}) {
        control_.reset();
        system_ = std::make_unique<DeviceListSystem>(devices);
        store_ = std::make_unique<Preferences>();
        control_ = std::make_unique<WindowControl>(*system_, *store_);
        control_->awakeFromNib();
        window_ = &control_->window();
    }

    /// Opens a tool from the menu, or brings it to the front.
    QWidget& open(const char* menuItem, const char* name) {
        findControl<QAction>(control_->window(), menuItem).trigger();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == name)
                return *window;
        }
        throw std::runtime_error(name);
    }

    void quit() { QMetaObject::invokeMethod(qApp, "aboutToQuit"); }

    void chooseFile(const char* menuItem, const QString& path, QString* title = nullptr) {
        answerFilePanel(path, title);
        find<QAction>(menuItem).trigger();
    }

    GeneratorSettings slot(int i) { return control_->bank().slots[static_cast<std::size_t>(i)].load(); }
    std::string notice() { return text("noticeLabel").toStdString(); }
    QString path(const char* name) const { return QDir(folder_.path()).filePath(name); }

    QByteArray contents(const QString& file) {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray("(unreadable)");
    }

    /// What is rendered next: one buffer.
    QByteArray record() {
        EXPECT_TRUE(control_->startRecording(path("phase.wav")));
        system_->advance(5000);
        control_->doStopRecordingFileMenu();
        return contents(path("phase.wav")).mid(44);
    }

    std::unique_ptr<DeviceListSystem> system_;
    std::unique_ptr<Preferences> store_;
    std::unique_ptr<WindowControl> control_;
};

TEST_F(WindowControlTest, TheFirstRunOffersThirteenSinesAndWritesEveryWindowsDefaults) {
    launch();
    EXPECT_EQ(slot(12).frequency, 2200);
    EXPECT_EQ(slot(12).volumeRight, 1);
    const Preferences stored;
    EXPECT_EQ(stored.floatValue("sweepEnd"), 20000.0F);
    EXPECT_EQ(stored.doubleValue("soundInputVolume"), 700.0);
    EXPECT_EQ(stored.integerValue("Freq0"), 0) << "the bank is stored at the end";

    // Nor is it another run when the file holds phases and switches alone, or no preferences at all.
    writePreferences("Phase3=90\nEnabled2=1\n\xff\xfe garbage\n[[[\n=\n%%%");
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
    EXPECT_EQ(find<QWidget>("labelRight").pos(), QPoint(570, 20));
    QStringList titles;
    for (int i = 0; i < find<QComboBox>("waveform0").count(); ++i)
        titles << find<QComboBox>("waveform0").itemText(i);
    EXPECT_EQ(titles.join(' '), "Sine Square Sawtooth Triangle White Pink Pulse Off");
    expectUsableWindow(*window_);
}

TEST_F(WindowControlTest, SlidersActAtOnceAndThePollClampsWhatIsTyped) {
    launch();
    find<QSlider>("volumeRight3").setValue(999);
    EXPECT_EQ(slot(3).volumeRight, 0.999);
    EXPECT_EQ(slot(3).volumeLeft, 1.0);
    EXPECT_EQ(text("readoutRight3"), "99");
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
        EXPECT_EQ(find<QLineEdit>("frequency4").text(), frequency) << "the text is left alone";
    }
    click("enabled4");
    find<QComboBox>("waveform4").setCurrentIndex(7);
    EXPECT_EQ(slot(4).enabled, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return slot(4).enabled == 1; })) << "the timer polls by itself";
    EXPECT_EQ(slot(4).waveform, 7);
    click("enabled5");
    quit();
    EXPECT_EQ(Preferences().integerValue("Enabled5"), 1) << "stored from the box, which is not polled yet";
}

TEST_F(WindowControlTest, TheMenuOpensEveryToolOnceAndThenBringsItToTheFront) {
    launch();
    for (const auto& [item, name] : kTools) {
        QWidget& tool = open(item, name);
        EXPECT_TRUE(tool.isVisible()) << name;
        EXPECT_FALSE(tool.testAttribute(Qt::WA_QuitOnClose)) << "the program ends with its main window";
        expectUsableWindow(tool);
        tool.showMinimized();
        EXPECT_EQ(&open(item, name), &tool);
        EXPECT_FALSE(tool.isMinimized()) << name;
    }
}

TEST_F(WindowControlTest, WithoutAnInputDeviceTheToolsOpenAndSaySo) {
    launch({device(1, "Speaker", 2, 0)});
    for (const auto& [item, name] : std::span(kTools).subspan(1)) { // the sweep has none
        window_ = &open(item, name);
        EXPECT_EQ(text("inputStatus"), "There is no input device") << name;
        EXPECT_FALSE(find<QSlider>("soundInputVolume2").isEnabled()) << name;
        choose("inputPopup", -1);
        find<QSlider>("soundInputVolume2").setValue(500);
        window_->grab();
    }
    quit();
    EXPECT_EQ(Preferences().integerValue("inputPopup"), -1);
    EXPECT_EQ(Preferences().integerValue("WATERFALL_inputPopup"), -1);
}

TEST_F(WindowControlTest, AnotherOutputDeviceIsPlayedOnAtOnce) {
    launch();
    testing::internal::CaptureStderr();
    QTest::keyClick(&find<QComboBox>("outputPopup"), Qt::Key_Down);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_LT(log.find("Stop Sound"), log.find("Start Sound")) << log;
    EXPECT_NE(log.find("Device: Line id 2 UID: uid-Line"), std::string::npos) << log;
    EXPECT_EQ(record().size(), 20000) << "the stream runs again";
}

TEST_F(WindowControlTest, TheMenuStartsAndStopsARecordingAndTheStatusBarShowsIt) {
    launch();
    auto& start = find<QAction>("doRecordingFileMenu");
    auto& stop = find<QAction>("doStopRecordingFileMenu");
    chooseFile("doRecordingFileMenu", QString());
    EXPECT_TRUE(start.isEnabled() && !stop.isEnabled());
    QString title;
    chooseFile("doRecordingFileMenu", path("take"), &title);
    EXPECT_EQ(title, "Choose file to save recording to");
    EXPECT_TRUE(!start.isEnabled() && stop.isEnabled());
    system_->advance(4 * 44100);
    control_->HalfSecTimer();
    EXPECT_EQ(text("recordingLabel"), "● Recording take.wav  0:03");
    stop.trigger();
    EXPECT_TRUE(start.isEnabled() && !stop.isEnabled());
    EXPECT_EQ(text("recordingLabel"), "");
}

TEST_F(WindowControlTest, PhasesStartAgainFromTheButtonAndWithOpenedSettingsTheSweepsToo) {
    writePreferences("Freq0=997.3\nVolL0=1\nEnabled0=1\n" // the generator on the left, the sweep on the right
                     "sweepStart=441.7\nsweepEnd=9000\nsweepAmplitudeRight=1\nsweepRightEnabled=1\n");
    launch();
    findControl<QAbstractButton>(open("menuSweep", "SweepWindow"), "oneShot").click();
    const QByteArray first = record();
    EXPECT_NE(record(), first);
    click("syncPhases");
    EXPECT_EQ(record(), first);
    EXPECT_NE(record(), first);
    chooseFile("menuOpenSettings", QString());
    EXPECT_EQ(record(), first) << "even when it is cancelled";
}

TEST_F(WindowControlTest, ASettingsFileIsTakenAsItIsWrittenExactlyAndClampedByTheNextPoll) {
    launch();
    SettingsOfAll wild{};
    wild[0] = {1e300, -1e300, 7.5, std::nan(""), 42, 1};
    wild[1] = {1000.123456789012, 0, 0, 1, 3, 1};
    const auto block = encodeSettingsFile(wild);
    const QByteArray bytes(reinterpret_cast<const char*>(block.data()), 4000);
    std::ofstream(path("wild").toStdString()) << bytes.toStdString();
    QString title;
    chooseFile("menuOpenSettings", path("wild"), &title);
    EXPECT_EQ(title, "Settings file to open");
    EXPECT_EQ(notice(), "Settings opened from wild");
    EXPECT_EQ(text("readoutLeft0"), "750");
    chooseFile("menuSaveSettings", path("copy"), &title);
    EXPECT_EQ(title, "Settings file to save");
    EXPECT_EQ(notice(), "Settings saved to copy");
    EXPECT_TRUE(contents(path("copy")) == bytes);
    system_->advance(44100);
    control_->HalfSecTimer();
    EXPECT_EQ(slot(0).frequency, 22000);
    EXPECT_EQ(slot(0).phase, -360);
    EXPECT_EQ(slot(0).volumeLeft, 7.5) << "it is not polled";
    EXPECT_EQ(slot(1).frequency, 1000.123456789012) << "the field shows all of it";
    EXPECT_EQ(slot(1).enabled, 1) << "the box shows it";
    EXPECT_EQ(slot(2).frequency, 0.1) << "zeros in the file";
}

TEST_F(WindowControlTest, FilesThatCannotBeReadOrWrittenAreSaidUntilOneCanBe) {
    launch();
    std::ofstream(path("empty").toStdString());
    for (const auto& [file, said] :
         {std::pair{"not there", "not there cannot be read: no such file"},
          {".", ". cannot be read: no such file"},
          {"empty", "empty is too short for a settings file: the rest counts as zero"}}) {
        control_->openSettings(path(file));
        EXPECT_EQ(notice(), said);
    }
    EXPECT_FALSE(control_->startRecording(path("no folder/take.wav")));
    EXPECT_EQ(notice(), "take.wav cannot be created");
    for (const auto& [file, meanwhile, inTheEnd] :
         {std::tuple{"/dev/full", "full cannot be written: is the disk full?",
                     "full could not be written completely"},
          {"good.wav", "", "Recorded good.wav"}}) {
        EXPECT_TRUE(control_->startRecording(path(file)));
        system_->advance(44100);
        control_->HalfSecTimer();
        EXPECT_EQ(notice(), meanwhile);
        control_->doStopRecordingFileMenu();
        EXPECT_EQ(notice(), inTheEnd);
    }
}

TEST_F(WindowControlTest, WhatAllWindowsKeepComesBackAndAnyFileIsSurvived) {
    // Key, what is found, and after a > what is left behind when that is something else.
    const char* const files[] = {
        R"(Freq7=1000.1, Phase7=-45.5, VolL7=0.333, VolR7=0.25, GenType7=3, Enabled7=1, MAIN_outputPopup=1,
           GENERATOR_WINDOW_FRAME=10 20 700 580,
           sweepStart=1000.1, sweepEnd=2000.2, sweepRate=-3.25, sweepAmplitudeLeft=0.333,
           sweepAmplitudeRight=0.25, sweepEnabled=1, sweepLeftEnabled=1, sweepRightEnabled=1, sweepReverse=1,
           sweepLog=1, SWEEP_WINDOW_FRAME=11 21 700 480,
           spectrumStartFreq=123.5, spectrumEndFreq=9000.5, spectrumNumAvg=7, spectrumFillCheckbox=1,
           spectrumLogCheckbox=1, spectrumGridCheckbox=1, gridBrightness=350.5, SPECTRUM_fftSizePopup=3,
           SPECTRUM_windowPopup=6, SPECTRUM_soundInputVolume=350, inputPopup=1,
           SPECTRUM_WINDOW_FRAME=12 22 770 560,
           waterfallStartingFreq=100.5, waterfallEndingFreq=9000.25, waterfallGain=2.5, waterfallSpeedup=3,
           waterfallReceiverkHz=7.25, fftSizeLog2=11, WATERFALL_inputPopup=1, WATERFALL_fftSizePopup=4,
           WATERFALL_windowPopup=5, soundInputVolume=450, WATERFALL_maxDB=90.5, WATERFALL_minDB=30.25,
           colorWaterfallPlot=1, WATERFALL_WINDOW_FRAME=13 23 795 570,
           SCOPE_range1Text=-1.5, SCOPE_range2Text=-0.25, SCOPE_trigger1Text=1234.5, SCOPE_trigger2Text=-9,
           SCOPE_offset1Text=12.5, SCOPE_offset2Text=-7.5, SCOPE_sweepText=2.5, SCOPE_polarity1Button=1,
           SCOPE_polarity2Button=1, SCOPE_invert1Button=1, SCOPE_invert2Button=1,
           SCOPE_soundInputVolume=550, SCOPE_WINDOW_FRAME=14 24 770 580)",
        R"(Freq0=440, Freq1=>1, spectrumEndFreq=>5000, gridBrightness=>1000, waterfallEndingFreq=>5000,
           waterfallGain=>1, waterfallSpeedup=5>1, fftSizeLog2=>7, WATERFALL_maxDB=>75, WATERFALL_minDB=>25,
           SCOPE_range1Text=>0, SCOPE_range2Text=>0, SCOPE_sweepText=>4)",
        R"(Freq0=1e300>22000, Freq1=nan>1, Freq2=-7>1, Freq3=@Variant(\0\0)>1, Phase0=1e9>360, VolL0=7>1,
           VolR0=-1>0, GenType0=99>7, GenType1=-3>0, GenType2=1e99>0, Enabled0=12345678901234>0,
           MAIN_outputPopup=77>0, sweepAmplitudeLeft=7>1, sweepReverse=-3>1, spectrumStartFreq=nan>0,
           spectrumNumAvg=250>100, gridBrightness=1e30>1000, SPECTRUM_fftSizePopup=99>0,
           SPECTRUM_windowPopup=-5>0, SPECTRUM_soundInputVolume=350.9>350, inputPopup=-7>0,
           waterfallEndingFreq=0, waterfallGain=2, waterfallSpeedup=-3>1, fftSizeLog2=-30>7,
           WATERFALL_windowPopup=77>0, WATERFALL_maxDB=-40>0, WATERFALL_minDB=40,
           SCOPE_range1Text=-1e300>-2, SCOPE_trigger1Text=1e300>32767, SCOPE_polarity1Button=256>0,
           GENERATOR_WINDOW_FRAME=2147483647 -99999 2147483647 2000000000>0 0 800 800)"};
    for (const char* const file : files) {
        QString found;
        QStringList left;
        for (const QString& row : QString(file).simplified().split(", ")) {
            const QString key = row.section('=', 0, 0) + '=';
            found += key + row.section('=', 1).section('>', 0, 0) + '\n';
            left << key + row.section('=', 1).section('>', -1);
        }
        writePreferences(found.toLatin1());
        launch();
        for (const auto& [item, name] : kTools)
            open(item, name).grab();
        system_->advance(44100);
        QTest::qWait(100);
        quit();
        const QString stored = contents(Preferences::defaultPath());
        for (const QString& line : left)
            EXPECT_TRUE(stored.contains('\n' + line + '\n')) << line.toStdString();
    }
}

} // namespace
} // namespace sonotrace
