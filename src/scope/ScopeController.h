#pragma once

#include "scope/ScopeCapture.h"
#include "scope/ScopeControls.h"
#include "scope/ScopeReadings.h"
#include "widgets/InputSource.h"
#include "widgets/ReportPicture.h"
#include "widgets/ToolController.h"

#include <QElapsedTimer>

#include <array>
#include <memory>

namespace Ui {
class ScopeWindow;
}

namespace sonotrace {

class Ruler;

/// The oscilloscope's window: restores and stores its controls, keeps their values for the capture and the
/// view, and runs the input stream from the moment it is made until the program ends. Window thread.
class ScopeController : public ToolController {
    Q_OBJECT

public:
    /// All arguments outlive the controller. Capture is delivered on `runLoop`, which is the window thread's.
    ScopeController(SoundSystem& system, RunLoop& runLoop, Preferences& preferences);
    ~ScopeController() override;

    /// Restores the window and starts to listen. Once.
    void awakeFromNib();

    void refreshDevices() override { source_->refreshDevices(); }
    void setCalibrations(Calibrations& calibrations) override { source_->setCalibrations(calibrations); }

    const ScopeControls& controls() const { return controls_; }
    const ScopeCapture& capture() const { return capture_; }

    // What the controls say at this moment. Channel 0 is the first (left), any other number the second.
    double getRange(std::int32_t ch) const;
    double getOffset(std::int32_t ch) const;
    double getTrigger(std::int32_t ch) const;
    bool getTriggerPolarity(std::int32_t ch) const;
    bool getInvert(std::int32_t ch) const;
    double getSweep() const;

private:
    void makeSlidersHandy();
    void listStoredControls();
    void takeControls();
    void showValues();
    void addHints(Hints& hints) const;
    QString steadyHint() const;
    QString searchHint(std::int32_t ch) const;
    void addRulers();
    void makeExportMenu(Preferences& preferences);
    MeasurementOrigin origin() const;
    std::vector<Setting> wordedSettings() const;
    ReportPicture picture();
    void takeBlock();
    bool isTriggered() const;
    void showCursors(bool areShown);
    void hold(bool holds);
    void awaitTrigger(bool awaits);
    void showReadings();
    void showRulers();
    ScopeCursor cursor(std::size_t index) const;

    const std::unique_ptr<Ui::ScopeWindow> ui_;
    ScopeControls controls_;
    ScopeCapture capture_;
    std::unique_ptr<InputSource> source_;
    ChannelDelay delay_;
    ScopeBlockReadings readings_; ///< of the block that is shown, while the window is
    std::int64_t readBlock_ = 0;  ///< ScopeCapture::blocks() when they were read
    Ruler* timeRuler_ = nullptr;
    std::array<Ruler*, 2> levelRulers_{};
    QElapsedTimer held_;      ///< since the picture is held
    QElapsedTimer lastBlock_; ///< since it came; not valid before the first
};

} // namespace sonotrace
