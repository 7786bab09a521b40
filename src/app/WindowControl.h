#pragma once

#include "app/MainMenu.h"
#include "audio/AudioDeviceTable.h"
#include "audio/OutputStream.h"
#include "generator/GeneratorBank.h"
#include "generator/OutputLevels.h"
#include "generator/OutputRender.h"
#include "generator/SineTable.h"
#include "generator/SweepParameters.h"
#include "generator/WavRecorder.h"
#include "platform/SoundSystem.h"
#include "widgets/Calibrations.h"
#include "widgets/DeviceInUse.h"
#include "widgets/Preferences.h"
#include "widgets/QtRunLoop.h"
#include "widgets/UnfocusedWheel.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

class QComboBox;
class QMainWindow;

namespace sonotrace {

class CalibrationDialog;
class GeneratorPanel;
class ScopeController;
class SpectrumController;
class StatusLine;
class SweepController;
class ToolController;
class WaterfallController;

/// The main controller: owns the generator window, the generators and their output stream, creates the tool
/// windows on demand and keeps house twice a second. Window thread.
class WindowControl : public QObject {
    Q_OBJECT

public:
    /// `system` and `preferences` outlive the controller.
    WindowControl(SoundSystem& system, Preferences& preferences);
    ~WindowControl() override;

    /// Starts up: restores the bank, builds the window, starts the output. Once.
    void awakeFromNib();

    /// Writes the state of the generator window into the preferences.
    void applicationWillTerminate();

    /// Whether the program may quit now: while a recording runs the user is asked, and may have it stopped.
    bool mayQuit();

    /// Opens a settings file without asking; what cannot be read counts as zeros and is said in the status
    /// bar.
    void openSettings(const QString& path);

    /// Starts a recording without asking. False when the file cannot be created.
    bool startRecording(const QString& path);

    QMainWindow& window() { return *window_; }
    const GeneratorBank& bank() const { return bank_; }

public Q_SLOTS:
    void menuGenerators();
    void menuSweep();
    void menuSpectrum();
    void menuWaterfall();
    void menuWScope();
    void menuOpenSettings();
    void menuSaveSettings();
    void doRecordingFileMenu();
    void doStopRecordingFileMenu();
    void showHelp();
    void doInputDevice();
    void syncPhases();
    void allOff();
    void refreshDevices();
    void calibrate();
    void arrangeOpenWindows();
    void undoOpenSettings();
    void quit();
    void HalfSecTimer();

private:
    void connectMenu();
    void validateMenu();
    bool validateMenuItem(const QAction& item) const;
    void GetSoundDevices();
    void SetSoundDevices();
    void startSound();
    void stopSound();
    void showOutput();
    void calibrateOutput(const std::string& uid);
    int analyzerBlock() const;
    void showRecordingState();
    void showOutcome();
    QString lossNotice() const;

    /// Makes a tool's controller on first use and shows its window; after that brings the window to the
    /// front.
    template <typename Controller, typename... Arguments>
    void openTool(std::unique_ptr<Controller>& controller, const char* name, Arguments&... arguments);

    SoundSystem& system_;
    Preferences& preferences_;
    const SineTable sineTable_;
    GeneratorBank bank_;
    SweepParameters sweep_;
    WavRecorder recorder_;
    OutputRender render_;
    AudioDeviceTable devices_;
    OutputStream output_;
    Calibrations calibrations_;
    OutputLevels levels_;
    std::string outputUid_; ///< of the device that the levels are for

    UnfocusedWheel unfocusedWheel_;
    const std::unique_ptr<QMainWindow> window_;
    MainMenu menu_{};
    GeneratorPanel* panel_ = nullptr;
    QComboBox* outputPopup_ = nullptr;
    StatusLine* status_ = nullptr;
    CalibrationDialog* calibrationDialog_ = nullptr; ///< made when it is wanted
    QTimer ourTimer_;
    QString recordingPath_;
    QByteArray settingsBefore_; ///< the last file was opened
    DeviceReturn return_;
    bool outcomeAwaited_ = false; ///< of the recording that was stopped

    QtRunLoop runLoop_;
    std::unique_ptr<SweepController> sweepController_;
    std::unique_ptr<SpectrumController> spectrumController_;
    std::unique_ptr<WaterfallController> waterfallController_;
    std::unique_ptr<ScopeController> scopeController_;
    std::vector<ToolController*> tools_; ///< those that there are
};

} // namespace sonotrace
