#include "app/WindowControl.h"

#include "batch/Subcommands.h"
#include "generator/SettingsFile.h"

#include "support/DeviceListSystem.h"
#include "support/FullDisk.h"
#include "support/ToolWindow.h"
#include "widgets/FilePanels.h"
#include "widgets/NumberField.h"
#include "widgets/RealSlider.h"
#include "widgets/TypedValue.h"

#include <QAction>
#include <QFile>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sys/stat.h>
#include <tuple>

namespace sonotrace {
namespace {

constexpr const char* kTools[] = {"Sweep", "Spectrum", "Waterfall", "Scope"};

class WindowControlTest : public WindowTest {
protected:
    WindowControlTest() { qputenv("XDG_CONFIG_HOME", folder_.path().toUtf8()); }

    void launch(std::uint32_t inputChannels = 2) {
        control_.reset();
        system_ = std::make_unique<DeviceListSystem>(
            std::vector{device(1, "Speaker", 2, inputChannels), device(2, "Line", 2, inputChannels)});
        store_ = std::make_unique<Preferences>();
        control_ = std::make_unique<WindowControl>(*system_, *store_);
        control_->awakeFromNib();
        window_ = &control_->window();
    }

    /// Opens a tool from the menu, or brings it to the front.
    QWidget& open(const QString& tool) {
        findControl<QAction>(control_->window(), (tool == "Scope" ? "menuW" : "menu") + tool).trigger();
        const auto windows = QApplication::topLevelWidgets();
        return **std::ranges::find(windows, tool + "Window", &QWidget::objectName);
    }

    /// Chooses from a menu and then, unless it is empty, a file in the panel. Returns the panel's title.
    QString chooseFile(const char* menuItem, const QString& path) {
        QString title;
        answerFilePanel(path, &title);
        find<QAction>(menuItem).trigger();
        return title;
    }

    GeneratorSettings slot(std::size_t i) { return control_->bank().slots[i].load(); }
    QString notice() { return text("noticeLabel"); }
    QString path(const char* name) const { return folder_.path() + '/' + name; }

    QByteArray contents(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    /// What is rendered next: one buffer.
    QByteArray record() {
        EXPECT_TRUE(control_->startRecording(path("phase.wav")));
        system_->advance(5000);
        control_->doStopRecordingFileMenu();
        return contents(path("phase.wav")).mid(44);
    }

    /// Presses a button of the next message box.
    void answerQuestion(const QString& button) {
        QTimer::singleShot(0, window_, [button] {
            const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_TRUE(box);
            const auto buttons = box->buttons();
            (*std::ranges::find(buttons, button, &QAbstractButton::text))->click();
        });
    }

    std::unique_ptr<DeviceListSystem> system_;
    std::unique_ptr<Preferences> store_;
    std::unique_ptr<WindowControl> control_;
};

TEST_F(WindowControlTest, SlidersActAtOnceAndThePollClampsWhatIsTyped) {
    launch();
    find<QSlider>("volumeRight3").setValue(999);
    EXPECT_EQ(slot(3).volumeRight, 0.999);
    const std::tuple<const char*, double, const char*, double> entries[] = {
        {"0", 0.1, "720", 360}, {"440.25 Hz", 440.25, " 12", 12}, {"1e308", 22000, "-1e999", -360},
        {"1k", 1, "", 0},       {".5", 0.5, "1e2", 100},          {"nan", 0.1, "0x10", 0}};
    for (const auto& [frequency, taken, phase, takenPhase] : entries) {
        type("frequency4", frequency);
        type("phase4", phase);
        control_->HalfSecTimer();
        EXPECT_EQ(slot(4).frequency, taken) << frequency;
        EXPECT_EQ(slot(4).phase, takenPhase) << phase;
        const auto& field = find<QLineEdit>("frequency4");
        EXPECT_EQ(field.text(), frequency) << "the text is left alone";
        const bool isTrue = *frequency == '4' || *frequency == '.';
        EXPECT_EQ(field.palette().base() == QPalette().base(), isTrue) << frequency;
        EXPECT_EQ(field.toolTip().startsWith(QString("plays %1 Hz\n").arg(taken)), !isTrue) << frequency;
    }
    click("enabled4");
    find<QComboBox>("waveform4").setCurrentText("Off");
    EXPECT_EQ(slot(4).enabled, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return slot(4).enabled == 1; })) << "the timer polls by itself";
    EXPECT_EQ(slot(4).waveform, 7);
}

TEST_F(WindowControlTest, TheMenuOpensEveryToolOnceAndThenBringsItToTheFront) {
    launch(0);
    expectUsableWindow(*window_);
    for (const char* name : kTools) {
        QWidget& tool = open(name);
        EXPECT_FALSE(tool.testAttribute(Qt::WA_QuitOnClose)) << "the program ends with its main window";
        expectUsableWindow(tool);
        tool.showMinimized();
        EXPECT_EQ(&open(name), &tool);
        EXPECT_FALSE(tool.isMinimized()) << name;
        const auto* status = tool.findChild<QLabel*>("inputStatus"); // the sweep has none
        EXPECT_TRUE(!status || status->text().startsWith("The list of inputs is empty")) << name;
    }
    find<QAction>("about").trigger();
    const auto& about = find<QMessageBox>("about");
    EXPECT_TRUE(about.text().contains("Loopback, Built-in Loopback\n"));
    EXPECT_EQ(about.textFormat(), Qt::PlainText);
}

TEST_F(WindowControlTest, WindowsFitTheScreenSideBySideAndCloseWithAKey) {
    launch();
    const QRect area = window_->screen()->availableGeometry(); // 800 x 800
    QWidget& spectrum = open("Spectrum");
    EXPECT_EQ(spectrum.size().boundedTo(area.size()), spectrum.size()) << "was 960 wide";
    find<QAction>("arrangeWindows").trigger();
    EXPECT_TRUE(area.contains(window_->frameGeometry()) && area.contains(spectrum.frameGeometry()));
    EXPECT_FALSE(window_->frameGeometry().intersects(spectrum.frameGeometry()));
    EXPECT_TRUE(QTest::qWaitForWindowActive(&spectrum));
    QTest::keyClick(&spectrum, Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(!spectrum.isVisible() && window_->isVisible());
}

TEST_F(WindowControlTest, AnotherOutputDeviceIsPlayedOnAtOnce) {
    launch();
    testing::internal::CaptureStderr();
    QTest::keyClick(&find<QComboBox>("outputPopup"), Qt::Key_Down);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("Device: Line id 2 UID: uid-Line"), std::string::npos) << log;
    EXPECT_EQ(record().size(), 20000) << "the stream runs again";
}

TEST_F(WindowControlTest, RefreshedListsShowTheDevicesInUseAndTheStreamsGoOn) {
    launch();
    choose("outputPopup", 1);
    const QWidget& spectrum = open("Spectrum");
    const auto refresh = [&](const std::vector<const char*>& names) {
        std::vector<DeviceDescription> devices;
        for (const char* name : names)
            devices.push_back(device(static_cast<AudioDeviceID>(devices.size() + 1), name, 2, 2));
        system_->setDevices(devices);
        testing::internal::CaptureStderr();
        find<QAction>("refreshDevices").trigger();
        EXPECT_EQ(testing::internal::GetCapturedStderr().find("Stop Sound"), std::string::npos);
        return std::pair(find<QComboBox>("outputPopup").currentText(),
                         findControl<QComboBox>(spectrum, "inputPopup").currentText());
    };
    EXPECT_EQ(refresh({"New", "Line", "Speaker"}), std::pair(QString("Line"), QString("Speaker")));
    EXPECT_EQ(refresh({"New", "Speaker"}), std::pair(QString(), QString("Speaker")));
    EXPECT_EQ(notice(), "Line is gone");
    EXPECT_EQ(record().size(), 20000);
}

TEST_F(WindowControlTest, TheMenuStartsAndStopsARecordingAndTheStatusBarSaysHowItGoes) {
    launch();
    auto& start = find<QAction>("doRecordingFileMenu");
    auto& stop = find<QAction>("doStopRecordingFileMenu");
    EXPECT_EQ(chooseFile("doRecordingFileMenu", QString()), "Choose file to save recording to");
    EXPECT_TRUE(start.isEnabled() && !stop.isEnabled());
    EXPECT_FALSE(control_->startRecording(path("no folder/take.wav")));
    EXPECT_EQ(notice(), path("no folder/take.wav") + " cannot be created");
    EXPECT_TRUE(control_->startRecording("/dev/full"));
    EXPECT_TRUE(!start.isEnabled() && stop.isEnabled());
    system_->advance(44100);
    control_->HalfSecTimer();
    EXPECT_EQ(notice(), "/dev/full cannot be written: is the disk full?");
    stop.trigger();
    EXPECT_EQ(notice(), "/dev/full could not be written completely");
    chooseFile("doRecordingFileMenu", path("take"));
    system_->advance(4 * 44100);
    control_->HalfSecTimer();
    EXPECT_EQ(text("recordingLabel") + notice(), "● Recording take.wav  0:04");
    stop.trigger();
    EXPECT_EQ(text("recordingLabel") + notice(), "Recorded " + path("take.wav"));
}

TEST_F(WindowControlTest, PhasesStartAgainFromTheButtonAndWithOpenedSettingsTheSweepsToo) {
    writePreferences("Freq0=997.3\nVolL0=1\nEnabled0=1\n" // the generator on the left, the sweep on the right
                     "sweepStart=441.7\nsweepEnd=9000\nsweepAmplitudeRight=1\nsweepRightEnabled=1\n");
    launch();
    findControl<QAbstractButton>(open("Sweep"), "oneShot").click();
    const QByteArray first = record();
    EXPECT_NE(record(), first);
    click("syncPhases");
    EXPECT_EQ(record(), first);
    chooseFile("menuOpenSettings", QString());
    EXPECT_EQ(record(), first) << "even when it is cancelled";
}

TEST_F(WindowControlTest, AllOffSilencesWhatIsRenderedNextFromAnyWindow) {
    writePreferences("Freq0=997.3\nVolL0=1\nEnabled0=1\n"
                     "sweepEnd=9000\nsweepRate=1\nsweepAmplitudeRight=1\nsweepRightEnabled=1\n");
    launch();
    control_->allOff();
    EXPECT_EQ(record(), QByteArray(20000, 0)) << "without a sweep window";
    click("enabled0");
    QWidget& sweep = open("Sweep");
    findControl<QAbstractButton>(sweep, "oneShot").click(); // runs, and is not ticked
    EXPECT_TRUE(QTest::qWaitForWindowActive(&sweep));
    testing::internal::CaptureStderr();
    QTest::keyClick(&sweep, Qt::Key_Period, Qt::ControlModifier);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "doEnabled\n");
    EXPECT_EQ(record(), QByteArray(20000, 0));
    EXPECT_FALSE(find<QAbstractButton>("enabled0").isChecked());
}

TEST_F(WindowControlTest, QuittingWhileARecordingRunsAsksUnlessTheSessionEnds) {
    launch();
    const auto close = [&](const char* answer) {
        EXPECT_TRUE(control_->startRecording(path("take.wav")));
        system_->advance(5000);
        window_->show();
        answerQuestion(answer);
        const bool closed = window_->close();
        return std::pair(closed, find<QAction>("doStopRecordingFileMenu").isEnabled());
    };
    EXPECT_EQ(close("Cancel"), std::pair(false, true));
    EXPECT_EQ(close("&Quit"), std::pair(true, true));
    EXPECT_EQ(close("&Stop Recording and Quit"), std::pair(true, false));
    EXPECT_EQ(contents(path("take.wav")).mid(40, 4).toHex(), "60ea0000") << "all three, as ever";
    EXPECT_TRUE(control_->startRecording(path("take.wav")));
    window_->show();
    QTimer::singleShot(0, qApp, [] {
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qApp, &quit);
    });
    EXPECT_EQ(QApplication::exec(), 0) << "nobody answers";
}

TEST_F(WindowControlTest, ASettingsFileIsTakenAsItIsWrittenExactlyAndClampedByTheNextPoll) {
    launch();
    SettingsOfAll wild{};
    wild[0] = {1e300, -1e300, 7.5, std::nan(""), 42, 1};
    wild[1] = {1000.123456789012, 0, 0, 1, 3, 1};
    const auto block = encodeSettingsFile(wild);
    const std::string bytes(reinterpret_cast<const char*>(block.data()), 4000);
    std::ofstream(path("wild").toStdString()) << bytes << "...";
    EXPECT_EQ(chooseFile("menuOpenSettings", path("wild")), "Settings file to open");
    EXPECT_EQ(notice(),
              "Settings opened from " + path("wild") + " (3 bytes too long: perhaps no settings file)");
    EXPECT_EQ(chooseFile("menuSaveSettings", path("copy")), "Settings file to save");
    EXPECT_EQ(notice(), "Settings saved to " + path("copy"));
    EXPECT_TRUE(contents(path("copy")).toStdString() == bytes);
    control_->HalfSecTimer();
    EXPECT_EQ(slot(0).frequency, 22000);
    EXPECT_EQ(slot(1).frequency, 1000.123456789012) << "the field shows all of it";
    window_->resize(window_->minimumSizeHint());
    control_->openSettings(path("not there"));
    const auto& label = find<QLabel>("noticeLabel");
    EXPECT_TRUE(QTest::qWaitFor([&] { return label.height() >= label.heightForWidth(label.width()); }));
    EXPECT_EQ(notice(), path("not there") + " cannot be read: no such file");
    const std::ofstream empty(path("empty").toStdString());
    type("frequency1", "777");
    control_->openSettings(path("empty"));
    EXPECT_EQ(notice(),
              path("empty") + " is too short for a settings file: the rest counts as zero (0 bytes of 4000)");
    auto& undo = find<QAction>("undoOpenSettings");
    undo.trigger();
    EXPECT_EQ(slot(1).frequency, 777) << "also what was typed last";
    EXPECT_FALSE(undo.isEnabled());
}

TEST_F(WindowControlTest, WhatIsRenderedWithoutAWindowIsWhatIsRecordedWithOne) {
    SettingsOfAll all{};
    for (std::int32_t i = 0; i < 8; ++i)
        all[static_cast<std::size_t>(i)] = {440.7 * (i + 1), 30.0 * i, 0.9, -0.3, i, 1};
    all[9] = {30000.0, -1e300, 1.0, 1.0, 0, 1};
    all[10] = {std::nan(""), std::nan(""), 1.0, 1.0, 3, 1};
    all[12] = {1000.0, 0.0, 1.0, 1.0, 0, 7}; // more than on
    const auto block = encodeSettingsFile(all);
    std::string settings = path("all.generator").toStdString();
    std::string rendered = path("rendered.wav").toStdString();
    std::ofstream(settings).write(reinterpret_cast<const char*>(block.data()), std::ssize(block));
    launch();
    control_->openSettings(path("all.generator"));
    control_->HalfSecTimer();
    const QWidget& sweep = open("Sweep");
    for (const auto& [field, value] : {std::pair("startFreq", "100"), {"endFreq", "9000"}, {"rate", "20000"}})
        findControl<QLineEdit>(sweep, field).setText(value);
    for (const char* amplitude : {"amplitudeLeft", "amplitudeRight"})
        findControl<QSlider>(sweep, amplitude).setValue(findControl<QSlider>(sweep, amplitude).maximum());
    for (const char* button : {"leftEnabled", "rightEnabled", "reverse", "oneShot"})
        findControl<QAbstractButton>(sweep, button).click();
    control_->syncPhases();
    EXPECT_TRUE(control_->startRecording(path("recorded.wav")));
    system_->advance(100000);
    control_->doStopRecordingFileMenu();

    std::string words[] = {"sonotrace", "render",    settings, "--sweep", "100,9000,20000,reverse,once",
                           "--seconds", "2.2675737", "-o",     rendered}; // 100000 frames
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    EXPECT_EQ(runSubcommand(static_cast<int>(arguments.size()), arguments.data()), 0);
    EXPECT_EQ(contents(path("recorded.wav")).size(), 400044);
    EXPECT_TRUE(contents(path("rendered.wav")) == contents(path("recorded.wav")));
}

TEST_F(WindowControlTest, CalibrationsAreEnteredAndKeptAtOnce) {
    launch();
    find<QAction>("calibrate").trigger();
    auto& dialog = find<QDialog>("CalibrationDialog");
    expectUsableWindow(dialog);
    choose("outputUnit0", 1);
    EXPECT_TRUE(find<QLineEdit>("outputFullScale0").toolTip().startsWith("Not calibrated: full scale must"));
    type("outputReading0", "-20");
    type("outputKnown0", "0.2");
    click("outputCompute0");
    EXPECT_EQ(find<QLineEdit>("outputFullScale0").text(), "2");
    choose("outputUnit0", 2);
    EXPECT_EQ(find<QLineEdit>("outputFullScale0").text(), "6.0206");
    answerFilePanel(Preferences::defaultPath());
    click("chooseCorrection0");
    EXPECT_EQ(text("correction0"), "Sonotrace.conf is not used: no line holds a frequency and a level");
    click("clearCorrection0");
    EXPECT_EQ(text("correction0"), "no correction");
    choose("inputUnit1", 5);
    find<QLineEdit>("inputFullScale1").setFocus();
    type("inputFullScale1", "120");
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(Preferences().doubleValue("CALIBRATION_inputFullScale_uid-Line"), 120) << "typed last";
}

TEST_F(WindowControlTest, VolumesAreTypedInTheOutputsUnitAndFrequenciesMadeClean) {
    writePreferences("CALIBRATION_outputUnit_loopback=1\nCALIBRATION_outputFullScale_loopback=2\n");
    launch();
    click("enabled0");
    click("enabled1");
    control_->HalfSecTimer();
    const auto typed = [](const QWidget& window, const char* name, const char* text) {
        auto& slider = findControl<RealSlider>(window, name);
        Q_EMIT slider.typingAsked();
        auto* field = slider.parentWidget()->findChildren<QLineEdit*>().last();
        field->setText(text);
        QTest::keyClick(field, Qt::Key_Return);
        return slider.doubleValue();
    };
    EXPECT_NEAR(typed(*window_, "volumeLeft0", "0.5 V"), 0.5, 1e-6) << "of two";
    EXPECT_NEAR(typed(*window_, "volumeRight1", "-10 dBV"), 0.316228, 1e-6);
    EXPECT_NEAR(typed(*window_, "volumeLeft2", "0.5 V"), 0.75, 1e-6) << "the third, once it is on";
    EXPECT_EQ(typed(*window_, "volumeLeft0", "1.5 V"), 1) << "as much as there is";
    EXPECT_EQ(typed(*window_, "volumeLeft0", "94 dB SPL"), 1) << "not a voltage";
    QFocusEvent focus(QEvent::FocusIn);
    auto& slider = find<RealSlider>("volumeLeft0");
    QApplication::sendEvent(&slider, &focus);
    EXPECT_TRUE(slider.toolTip().startsWith("1.000 V as a sine, which is 1 of 2 that are on\n"));

    auto& field = find<QLineEdit>("frequency0");
    field.actions().front()->trigger();
    EXPECT_EQ(field.text(), "1001.07");
    field.actions().back()->trigger();
    EXPECT_EQ(field.text(), "2756.25");
    EXPECT_NEAR(typed(open("Sweep"), "amplitudeLeft", "0.5 V"), 0.75, 1e-6);
}

TEST_F(WindowControlTest, FilePanelsBeginInTheFolderThatWasLastForTheKindOfFile) {
    const std::filesystem::path music = path("music").toStdString(), odd = path(" odd=%41# ").toStdString();
    std::filesystem::create_directories(music);
    std::filesystem::create_directories(odd);
    std::ofstream(path("user-dirs.dirs").toStdString()) << "XDG_MUSIC_DIR=" << music << '\n';
    const auto offered = [&](const char* item, const QString& chosen) {
        QString file;
        answerFilePanel(chosen, nullptr, &file);
        find<QAction>(item).trigger();
        return file.replace(QRegularExpression(" \\d{4}(-\\d\\d){2} \\d\\d(-\\d\\d){2}"), "<time>");
    };
    launch();
    chooseFile("menuSaveSettings", path("copy"));
    EXPECT_EQ(offered("doRecordingFileMenu", path(" odd=%41# /take")), path("music/Sonotrace<time>.wav"));
    find<QAction>("doStopRecordingFileMenu").trigger();
    QMetaObject::invokeMethod(qApp, "aboutToQuit");
    launch();
    EXPECT_EQ(offered("doRecordingFileMenu", ""), path(" odd=%41# /Sonotrace<time>.wav"));
    EXPECT_EQ(offered("menuSaveSettings", ""), path("Sonotrace<time>"));
}

TEST_F(WindowControlTest, WhatAllWindowsKeepComesBackAndAnyFileIsSurvived) {
    // What is found, and after a > what is left behind when that is something else. The last is a first run.
    const char* const files[] = {
        R"(Freq7=1000.1, Phase7=-45.5, VolL7=0.333, VolR7=0.25, GenType7=3, Enabled7=1, MAIN_outputPopup=1,
           MAIN_restoreInputVolumes=1, GENERATOR_WINDOW_FRAME=10 20 700 580, sweepStart=1000.1, sweepEnd=2000.2, sweepRate=-3.25,
           sweepAmplitudeLeft=0.333, sweepAmplitudeRight=0.25, sweepEnabled=1, sweepLeftEnabled=1,
           sweepRightEnabled=1, sweepReverse=1, sweepLog=1, SWEEP_WINDOW_FRAME=11 21 700 480,
           spectrumStartFreq=123.5, spectrumEndFreq=9000.5, spectrumNumAvg=7, spectrumFillCheckbox=1,
           spectrumLogCheckbox=1, spectrumGridCheckbox=1, gridBrightness=350.5, SPECTRUM_fftSizePopup=3,
           SPECTRUM_windowPopup=6, SPECTRUM_soundInputVolume=350, inputPopup=1,
           SPECTRUM_WINDOW_FRAME=12 22 770 560, waterfallStartingFreq=100.5, waterfallEndingFreq=9000.25,
           waterfallGain=2.5, waterfallSpeedup=3, waterfallReceiverkHz=7.25, fftSizeLog2=11,
           WATERFALL_inputPopup=1, WATERFALL_fftSizePopup=4, WATERFALL_windowPopup=5, soundInputVolume=450,
           WATERFALL_maxDB=90.5, WATERFALL_minDB=30.25, colorWaterfallPlot=1,
           WATERFALL_WINDOW_FRAME=13 23 795 570, SCOPE_range1Text=-1.5, SCOPE_range2Text=-0.25,
           SCOPE_trigger1Text=1234.5, SCOPE_trigger2Text=-9, SCOPE_offset1Text=12.5, SCOPE_offset2Text=-7.5,
           SCOPE_sweepText=2.5, SCOPE_polarity1Button=1, SCOPE_polarity2Button=1, SCOPE_invert1Button=1,
           SCOPE_invert2Button=1, SCOPE_soundInputVolume=550, SCOPE_WINDOW_FRAME=14 24 770 580)",
        R"(Freq0=1e300>Freq0=22000, Freq1=nan>Freq1=1, Freq2=>Freq2=1, VolL0=7>VolL0=1, GenType0=99>GenType0=7,
           Enabled0=12345678901234>Enabled0=0, MAIN_outputPopup=77>MAIN_outputPopup=0,
           waterfallEndingFreq=0, waterfallGain=2, fftSizeLog2=-30>fftSizeLog2=7,
           SCOPE_range1Text=-1e300>SCOPE_range1Text=-2, SCOPE_polarity1Button=256>SCOPE_polarity1Button=0,
           GENERATOR_WINDOW_FRAME=2147483647 -99999 2147483647 2000000000>GENERATOR_WINDOW_FRAME=0 0 800 760)",
        "Phase3=90, Enabled2=1, \u00ff garbage>Freq12=2200, [[[>VolR12=1, =>Freq0=1000, %%%>sweepEnd=20000"};
    for (const char* const file : files) {
        QString found;
        QStringList left;
        for (const QString& row : QString(file).simplified().split(", ")) {
            found += row.section('>', 0, 0) + '\n';
            left << row.section('>', -1);
        }
        writePreferences(found.toLatin1());
        launch();
        for (const char* tool : kTools)
            open(tool).grab();
        system_->advance(44100);
        QTest::qWait(100);
        QMetaObject::invokeMethod(qApp, "aboutToQuit");
        const QString stored = contents(Preferences::defaultPath());
        float volume = 0;
        system_->getInputVolume(1, 1, volume);
        EXPECT_EQ(volume == 1.0F, stored.contains("restoreInputVolumes=1")) << volume;
        for (const QString& line : left)
            EXPECT_TRUE(stored.contains('\n' + line + '\n')) << line.toStdString();
    }
}

TEST_F(WindowControlTest, AFullDiskLeavesTheFilesThatWereThere) {
    writePreferences("Freq0=1000\n");
    Preferences store;
    store.setFloat("Freq0", 2000);
    const QString file = Preferences::defaultPath();
    const QByteArray before = contents(file);
    setDiskFull(true);
    const bool stored = store.synchronise();
    const QString said = writeFile(file, "new", "Saved %1");
    setDiskFull(false);
    EXPECT_TRUE(!stored && said.contains("cannot be written")) << said.toStdString();
    EXPECT_EQ(contents(file), before);
    mkfifo(qPrintable(path("pipe")), 0600);
    EXPECT_TRUE(
        writeFile(path("pipe"), "new", "Saved %1").endsWith("pipe cannot be written: it is not a file"));
}

/// What the controls of all windows have in common, tried with a large font.
class ControlsTest : public WindowControlTest {
protected:
    ControlsTest() {
        QFont large = usualFont_;
        large.setPointSize(14);
        QApplication::setFont(large);
        launch();
        for (const char* tool : kTools)
            open(tool);
    }
    ~ControlsTest() override { QApplication::setFont(usualFont_); }

    /// Makes the window with that control the one under test.
    template <typename Control>
    Control& go(const QString& name) {
        for (QWidget* window : windows()) {
            if (window->findChild<Control*>(name))
                window_ = window;
        }
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_));
        return find<Control>(name);
    }

    static QWidgetList windows() {
        QWidgetList windows = QApplication::topLevelWidgets();
        windows.removeIf([](const QWidget* window) { return !window->objectName().endsWith("Window"); });
        return windows;
    }

    const QFont usualFont_ = QApplication::font();
};

QString turnWheel(QWidget& control) {
    const QPointF middle = control.rect().center();
    QWheelEvent event(middle, control.mapToGlobal(middle), {}, {0, -120}, {}, {}, {}, false);
    QSpontaneKeyEvent::setSpontaneous(&event); // others stay where they are sent
    qApp->notify(&control, &event);
    return control.metaObject()->userProperty().read(&control).toString();
}

TEST_F(ControlsTest, TheWheelTurnsOnlyWhatHasTheFocus) {
    for (QWidget* window : windows()) {
        for (QWidget* control : window->findChildren<QWidget*>()) {
            if (!control->isVisible() || !(control->inherits("QSlider") || control->inherits("QComboBox")))
                continue;
            window->setFocus();
            const QVariant before = control->metaObject()->userProperty().read(control);
            EXPECT_EQ(turnWheel(*control), before.toString()) << control->objectName().toStdString();
            EXPECT_NE(window->focusWidget(), control) << control->objectName().toStdString();
        }
    }
    auto& popup = go<QComboBox>("waveform0");
    window_->resize(700, 300);
    turnWheel(popup);
    EXPECT_GT(find<QScrollArea>("view").verticalScrollBar()->value(), 0);
    popup.setFocus();
    EXPECT_EQ(turnWheel(popup), "Square");
}

TEST_F(ControlsTest, AValueIsTypedInThePlaceOfItsLabelAndSentAsAMoveIs) {
    const std::tuple<const char*, const char*, double, const char*, const char*> entries[] = {
        {"volumeLeft3", "-6 dB", std::pow(10.0, -0.3), "readoutLeft3", "50"},
        {"amplitudeLeft", "120", 1, "amplitudeLeftReadout", "100.0 %"},
        {"soundInputVolume2", "35%", 350, "soundInputVolume2Value", "35 %  -9.1 dB"},
        {"rangeSlider1", "× 10", -1, "rangeValue1", "× 10.0"},
        {"offsetSlider2", "-7.25 px", -7.25, "offsetValue2", "-7 px"},
        {"triggerSlider1", "1e3 px", 0, "triggerValue1", "0"},
        {"sweepSlider", "1 ms", 5 - std::log10(44.01), "sweepValue", "44 samples, 1.00 ms"}};
    const auto typeValue = [](RealSlider& slider, const char* text, Qt::Key end) {
        slider.setFocus();
        QTest::keyClick(&slider, Qt::Key_F2);
        QTest::keyClicks(QApplication::focusWidget(), text);
        QTest::keyClick(QApplication::focusWidget(), end);
    };
    for (const auto& [name, typed, value, label, shown] : entries) {
        auto& slider = go<RealSlider>(name);
        typeValue(slider, typed, Qt::Key_Return);
        EXPECT_DOUBLE_EQ(slider.doubleValue(), value) << name;
        EXPECT_EQ(text(label), shown) << name;
    }
    QTest::mouseDClick(&find<QLabel>("rangeSlider1Label"), Qt::LeftButton);
    EXPECT_EQ(find<RealSlider>("rangeSlider1").doubleValue(), 0);
    EXPECT_NEAR(*volumeNotation(1000, 3).read("-9.3 dB"), 700, 0.2) << "as mixers count";

    auto& slider = go<RealSlider>("volumeLeft3");
    typeValue(slider, "12", Qt::Key_Escape);
    typeValue(slider, "", Qt::Key_Tab);
    EXPECT_EQ(slider.doubleValue(), std::pow(10.0, -0.3)) << "neither given up nor rounded";
    testing::internal::CaptureStderr();
    typeValue(slider, "50.05", Qt::Key_Tab);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "volSliderEvent 503\n");
    QTest::keyClick(&slider, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(slider.doubleValue(), 0.501);
    QTest::keyClick(&slider, Qt::Key_Delete);
    EXPECT_EQ(slider.doubleValue(), 1);
    typeValue(slider, "0.01", Qt::Key_Tab);
    QTest::keyClick(&slider, Qt::Key_Home);
    EXPECT_EQ(slider.doubleValue(), 0);
}

TEST_F(ControlsTest, NumbersAreSteppedAndThousandsWrittenOut) {
    const std::tuple<const char*, Qt::Key, const char*> entries[] = {
        {"441.5 Hz", Qt::Key_Up, "450"}, {"1000", Qt::Key_Up, "1100"},
        {"1000", Qt::Key_Down, "990"},   {"1000", Qt::Key_PageDown, "900"},
        {"0", Qt::Key_Down, "0"},        {"1e999", Qt::Key_Up, "1e999"},
        {"1.5k", Qt::Key_Up, "1600"},    {"1.001 kHz", Qt::Key_Return, "1001"},
        {"22K", Qt::Key_Tab, "22000"},   {"1 kg", Qt::Key_Tab, "1 kg"}};
    auto& field = go<NumberField>("startFreq");
    for (const auto& [typed, key, then] : entries) {
        field.setFocus();
        field.setText(typed);
        QTest::keyClick(&field, key);
        EXPECT_EQ(field.text(), then) << typed;
    }
    field.setText("1k");
    testing::internal::CaptureStderr();
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "startFreqTextChanged\ndoStartFreq\n");
}

TEST_F(ControlsTest, NoMnemonicIsThereTwiceAndNothingIsClippedInTheSmallestWindows) {
    for (QWidget* window : windows()) {
        QList<QKeySequence> mnemonics;
        const auto use = [&mnemonics](const QString& text) {
            const QKeySequence key = QKeySequence::mnemonic(text);
            EXPECT_TRUE(key.isEmpty() || !mnemonics.contains(key)) << text.toStdString();
            mnemonics << key;
        };
        for (const QMenu* menu : window->findChildren<QMenu*>())
            use(menu->title());
        window->resize(window->minimumSizeHint());
        QApplication::processEvents();
        for (const QWidget* part : window->findChildren<QWidget*>()) {
            const QString text = part->property("text").toString();
            const bool isField = part->inherits("QLineEdit");
            if (!isField && !part->inherits("QLabel") && !part->inherits("QAbstractButton"))
                continue;
            use(isField ? QString() : text);
            const QSize needed = isField ? part->fontMetrics().size(0, text) : part->sizeHint();
            const bool isElided = part->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
            EXPECT_TRUE(!part->isVisible() || isElided || part->size().expandedTo(needed) == part->size())
                << part->objectName().toStdString();
        }
    }
}

} // namespace
} // namespace sonotrace
