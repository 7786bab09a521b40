#include "app/WindowControl.h"

#include "app/About.h"
#include "app/CalibrationDialog.h"
#include "app/FirstRunDefaults.h"
#include "app/GeneratorWindow.h"
#include "app/QuitQuestion.h"
#include "app/Resources.h"
#include "app/StatusLine.h"
#include "app/WindowArrangement.h"
#include "base/SampleRate.h"
#include "base/SystemLog.h"
#include "generator/GeneratorPanel.h"
#include "generator/GeneratorPreferences.h"
#include "generator/SettingsDocument.h"
#include "scope/ScopeController.h"
#include "spectrum/SpectrumController.h"
#include "sweep/SweepController.h"
#include "waterfall/WaterfallController.h"
#include "widgets/FilePanels.h"
#include "widgets/PopUp.h"
#include "widgets/StreamText.h"

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenuBar>
#include <QScreen>
#include <QUrl>

namespace sonotrace {

namespace {
constexpr auto kFrameKey = "GENERATOR_WINDOW_FRAME";
constexpr auto kOutputKey = "MAIN_outputPopup";
constexpr auto kRestoreKey = "MAIN_restoreInputVolumes";
constexpr int kHalfSecond = 500; // ms
constexpr std::chrono::seconds kSomeSeconds{4};

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}
} // namespace

WindowControl::WindowControl(SoundSystem& system, Preferences& preferences)
    : system_(system),
      preferences_(preferences),
      render_(bank_, sweep_, sineTable_, recorder_),
      output_(system, devices_, [this](std::span<std::int16_t> samples) { render_.render(samples); }),
      calibrations_(preferences),
      levels_(bank_, sweep_),
      window_(std::make_unique<QMainWindow>()) {}

WindowControl::~WindowControl() = default;

void WindowControl::awakeFromNib() {
    auto* panel = new GeneratorPanel(bank_, levels_, [this] { return analyzerBlock(); });
    const GeneratorWindow parts =
        buildGeneratorWindow(*window_, panel, QString::fromStdString(system_.name()));
    menu_ = parts.menu;
    panel_ = parts.panel;
    outputPopup_ = parts.outputPopup;
    status_ = parts.status;
    connectMenu();
    connect(parts.syncPhases, &QAbstractButton::clicked, this, &WindowControl::syncPhases);
    connect(parts.allOff, &QAbstractButton::clicked, this, &WindowControl::allOff);
    connect(&calibrations_, &Calibrations::changed, this, [this] { calibrateOutput(outputUid_); });
    guardClosing(*window_, [this] { return mayQuit(); });

    deleteSomeMenuItems(*window_->menuBar());
    preferences_.restoreFrame(*window_, kFrameKey);
    if (loadGeneratorBank(preferences_, bank_))
        writeFirstRunDefaults(preferences_);
    panel_->BuildControls();
    GetSoundDevices();
    SetSoundDevices();
    selectItem(*outputPopup_, preferences_.integerValue(kOutputKey));
    // Connected only now: filling the pop-up is not the user choosing a device.
    connect(outputPopup_, &QComboBox::activated, this, &WindowControl::doInputDevice);
    startSound();
    connect(qApp, &QCoreApplication::aboutToQuit, this, &WindowControl::applicationWillTerminate);
    menu_.restoreInputVolumes->setChecked(preferences_.integerValue(kRestoreKey) != 0);
    menuGenerators();
    connect(&ourTimer_, &QTimer::timeout, this, &WindowControl::HalfSecTimer);
    ourTimer_.start(kHalfSecond);
    validateMenu();
}

void WindowControl::connectMenu() {
    const auto on = [this](QAction* item, auto method) { connect(item, &QAction::triggered, this, method); };
    on(menu_.menuOpenSettings, &WindowControl::menuOpenSettings);
    on(menu_.menuSaveSettings, &WindowControl::menuSaveSettings);
    on(menu_.doRecordingFileMenu, &WindowControl::doRecordingFileMenu);
    on(menu_.doStopRecordingFileMenu, &WindowControl::doStopRecordingFileMenu);
    on(menu_.menuGenerators, &WindowControl::menuGenerators);
    on(menu_.menuSpectrum, &WindowControl::menuSpectrum);
    on(menu_.menuSweep, &WindowControl::menuSweep);
    on(menu_.menuWaterfall, &WindowControl::menuWaterfall);
    on(menu_.menuWScope, &WindowControl::menuWScope);
    on(menu_.showHelp, &WindowControl::showHelp);
    connect(menu_.about, &QAction::triggered, this, [this] {
        showAbout(*window_, QString::fromStdString(system_.name()), describeStream(output_.state()));
    });
    on(menu_.undoOpenSettings, &WindowControl::undoOpenSettings);
    on(menu_.allOff, &WindowControl::allOff);
    on(menu_.refreshDevices, &WindowControl::refreshDevices);
    on(menu_.calibrate, &WindowControl::calibrate);
    on(menu_.arrangeWindows, &WindowControl::arrangeOpenWindows);
    connect(menu_.restoreInputVolumes, &QAction::triggered, this,
            [this](bool restore) { preferences_.setInteger(kRestoreKey, restore ? 1 : 0); });
    on(menu_.quit, &WindowControl::quit);
}

bool WindowControl::validateMenuItem(const QAction& item) const {
    const int tag = item.property("tag").toInt();
    if (tag == kStartRecordingTag)
        return !recorder_.isRecording();
    if (tag == kStopRecordingTag)
        return recorder_.isRecording();
    return true;
}

void WindowControl::validateMenu() {
    for (QAction* item : {menu_.doRecordingFileMenu, menu_.doStopRecordingFileMenu})
        item->setEnabled(validateMenuItem(*item));
}

void WindowControl::GetSoundDevices() {
    devices_.GetSoundDevices(system_, AudioDeviceTable::Variant::Generator);
}

void WindowControl::SetSoundDevices() {
    setItems(*outputPopup_, devices_.outputTitles());
}

void WindowControl::startSound() {
    output_.startSound(outputPopup_->currentIndex());
    calibrateOutput(output_.chosen().uid);
}

void WindowControl::stopSound() {
    output_.stopSound();
}

/// The streams go on.
void WindowControl::refreshDevices() {
    devices_ = AudioDeviceTable(); // what is appended to an old one's maps would not be found
    GetSoundDevices();
    SetSoundDevices();
    const auto position = [this](const std::string& uid) { return devices_.outputPosition(uid); };
    const QString trouble = selectDeviceInUse(*outputPopup_, position, output_.chosen(), output_.state());
    if (!trouble.isEmpty())
        status_->showNotice(trouble);
    for (ToolController* tool : tools_)
        tool->refreshDevices();
    if (calibrationDialog_)
        calibrationDialog_->showDevices(devices_);
}

void WindowControl::calibrate() {
    if (!calibrationDialog_) {
        calibrationDialog_ = new CalibrationDialog(calibrations_, preferences_, window_.get());
        calibrationDialog_->showDevices(devices_);
    }
    bringToFront(*calibrationDialog_);
}

void WindowControl::calibrateOutput(const std::string& uid) {
    outputUid_ = uid;
    levels_.setCalibration(calibrations_.calibration(Calibrations::Side::Output, uid));
}

/// As it would be if it were open now.
int WindowControl::analyzerBlock() const {
    if (spectrumController_)
        return static_cast<int>(spectrumController_->analysis().fftSize());
    const auto item = static_cast<std::size_t>(preferences_.integerValue("SPECTRUM_fftSizePopup"));
    return item < kSpectrumFftSizes.size() ? kSpectrumFftSizes[item] : kSpectrumFftSizes.front();
}

void WindowControl::arrangeOpenWindows() {
    QList<QWidget*> open{window_.get()};
    for (ToolController* tool : tools_) {
        if (tool->window().isVisible() && !tool->window().isMinimized())
            open.append(&tool->window());
    }
    arrangeWindows(open, window_->screen()->availableGeometry());
}

void WindowControl::doInputDevice() {
    stopSound();
    startSound();
    return_ = DeviceReturn();
    showOutput();
}

void WindowControl::syncPhases() {
    render_.syncPhases();
}

/// For somebody with headphones on: what is rendered next is silent.
void WindowControl::allOff() {
    panel_->switchAllOff();
    panel_->poll();
    if (sweepController_) // without it the sweep has never been on
        sweepController_->switchOff();
}

void WindowControl::menuGenerators() {
    bringToFront(*window_);
}

void WindowControl::menuSweep() {
    openTool(sweepController_, "sweep", sweep_, levels_, preferences_);
}

void WindowControl::menuSpectrum() {
    openTool(spectrumController_, "spectrum", system_, runLoop_, preferences_);
}

void WindowControl::menuWaterfall() {
    openTool(waterfallController_, "waterfall", system_, preferences_);
}

void WindowControl::menuWScope() {
    openTool(scopeController_, "scope", system_, runLoop_, preferences_);
}

template <typename Controller, typename... Arguments>
void WindowControl::openTool(std::unique_ptr<Controller>& controller, const char* name,
                             Arguments&... arguments) {
    if (controller) {
        bringToFront(controller->window());
        return;
    }
    controller = std::make_unique<Controller>(arguments...);
    controller->setCalibrations(calibrations_);
    controller->awakeFromNib();
    tools_.push_back(controller.get());
    connect(qApp, &QCoreApplication::aboutToQuit, controller.get(), &Controller::applicationWillTerminate);
    bringToFront(controller->window());
    systemLog("%s: %s", name, controller->metaObject()->className());
}

void WindowControl::HalfSecTimer() {
    panel_->poll();
    if (!recorder_.flush())
        status_->showNotice(QString("%1 cannot be written: is the disk full?").arg(recordingPath_));
    else if (recorder_.isRecording() && recorder_.lostFrames() > 0)
        status_->showNotice(lossNotice());
    else if (outcomeAwaited_)
        showOutcome();
    showRecordingState();
    showOutput();
}

void WindowControl::showOutput() {
    const QueueState state = output_.state();
    status_->showOutput(state);
    if (state.deviceUid != outputUid_)
        calibrateOutput(state.deviceUid);
    if (!return_.isReturn(state))
        return;
    if (devices_.outputPosition(output_.chosen().uid) != outputPopup_->currentIndex())
        refreshDevices(); // its list was built while the device was away
    status_->showNotice(
        QString("%1 is back and played on again").arg(QString::fromStdString(state.deviceName)),
        kSomeSeconds);
}

void WindowControl::showRecordingState() {
    const QString name = QFileInfo(recordingPath_).fileName();
    status_->showRecording(recorder_.isRecording() ? name : QString(), recorder_.seconds());
}

void WindowControl::menuSaveSettings() {
    // As it is when the user asks: what plays on while the panel is open does not change the file.
    const QByteArray block = settingsBlock(*panel_);
    if (const auto path =
            askForFileToSave(window_.get(), preferences_, kSettingsFiles, "Settings file to save"))
        status_->showNotice(saveSettingsDocument(block, *path));
}

void WindowControl::menuOpenSettings() {
    if (const auto path =
            askForFileToOpen(window_.get(), preferences_, kSettingsFiles, "Settings file to open"))
        openSettings(*path);
    syncPhases();
}

void WindowControl::openSettings(const QString& path) {
    panel_->poll(); // what was typed last is to come back as well
    settingsBefore_ = settingsBlock(*panel_);
    status_->showNotice(openSettingsDocument(*panel_, path));
    menu_.undoOpenSettings->setEnabled(true);
}

void WindowControl::undoOpenSettings() {
    showSettingsBlock(*panel_, settingsBefore_);
    syncPhases();
    menu_.undoOpenSettings->setEnabled(false);
    status_->showNotice("The generators are as they were before the settings were opened");
}

void WindowControl::doRecordingFileMenu() {
    if (const auto path =
            askForFileToSave(window_.get(), preferences_, kRecordings, "Choose file to save recording to"))
        startRecording(*path);
}

bool WindowControl::startRecording(const QString& path) {
    recordingPath_ = path;
    const bool started = recorder_.start(path.toStdU16String());
    outcomeAwaited_ = false;
    if (started)
        status_->clearNotice();
    else
        status_->showNotice(QString("%1 cannot be created").arg(recordingPath_));
    validateMenu();
    showRecordingState();
    return started;
}

void WindowControl::doStopRecordingFileMenu() {
    recorder_.stop();
    outcomeAwaited_ = true;
    showOutcome();
    validateMenu();
    showRecordingState();
}

/// Says how a recording came out, once the disk has taken it.
void WindowControl::showOutcome() {
    const std::optional<bool> whole = recorder_.outcome();
    outcomeAwaited_ = !whole;
    if (!whole)
        status_->showNotice(QString("%1 is still being written").arg(recordingPath_));
    else if (recorder_.lostFrames() > 0)
        status_->showNotice(lossNotice());
    else
        status_->showNotice(*whole ? QString("Recorded %1").arg(recordingPath_)
                                   : QString("%1 could not be written completely").arg(recordingPath_));
}

QString WindowControl::lossNotice() const {
    const double seconds = static_cast<double>(recorder_.lostFrames()) / kSampleRate;
    return QString("%1 lacks %2 s: the disk was too slow").arg(recordingPath_).arg(seconds, 0, 'f', 1);
}

void WindowControl::showHelp() {
    const QString manual = resourcePath("Sonotrace Docs.pdf");
    if (manual.isEmpty() || !QDesktopServices::openUrl(QUrl::fromLocalFile(manual)))
        status_->showNotice(manual.isEmpty() ? "The manual is not installed"
                                             : QString("No document viewer opens %1").arg(manual));
}

bool WindowControl::mayQuit() {
    if (!recorder_.isRecording())
        return true;
    const QuitAnswer answer = askHowToQuit(*window_, recordingPath_);
    if (answer == QuitAnswer::StopRecordingAndQuit)
        doStopRecordingFileMenu();
    return answer != QuitAnswer::Cancel;
}

void WindowControl::quit() {
    if (mayQuit())
        QCoreApplication::exit(0);
}

void WindowControl::applicationWillTerminate() {
    for (int slot = 0; slot < kGeneratorCount; ++slot)
        saveGeneratorSlot(preferences_, slot, panel_->slotSettings(slot));
    preferences_.setInteger(kOutputKey, outputPopup_->currentIndex());
    preferences_.setFrame(*window_, kFrameKey);
    if (menu_.restoreInputVolumes->isChecked() && system_.restoreInputVolumes() != kNoError)
        systemLog("The input volumes cannot be put back");
    if (!preferences_.synchronise())
        systemLog("The preferences cannot be written");
    if (const auto underruns = output_.state().underruns; underruns > 0)
        systemLog("Output underruns: %d", static_cast<int>(underruns));
    systemLog("applicationWillTerminate");
}

} // namespace sonotrace
