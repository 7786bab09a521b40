#pragma once

#include "spectrum/OverlayMenu.h"
#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumGeometry.h"
#include "spectrum/SpectrumMeasuring.h"
#include "spectrum/SpectrumOverlays.h"
#include "widgets/InputSource.h"
#include "widgets/ReportPicture.h"
#include "widgets/Ruler.h"
#include "widgets/ToolController.h"

#include <QElapsedTimer>
#include <QTimer>

#include <memory>

namespace Ui {
class SpectrumWindow;
}

namespace sonotrace {

/// The spectrum analyzer's window: restores and stores its controls, hands their values to the analysis and
/// the view, and runs the input stream from the moment it is made until the program ends. Window thread.
class SpectrumController : public ToolController {
    Q_OBJECT

public:
    /// All arguments outlive the controller. Capture is delivered on `runLoop`, which is the window thread's.
    SpectrumController(SoundSystem& system, RunLoop& runLoop, Preferences& preferences);
    ~SpectrumController() override;

    /// Restores the window and starts to listen. Once.
    void awakeFromNib();

    void refreshDevices() override { source_->refreshDevices(); }
    void setCalibrations(Calibrations& calibrations) override { source_->setCalibrations(calibrations); }

    const SpectrumAnalysis& analysis() const { return analysis_; }
    const SpectrumDisplay& display() const { return display_; }
    const SpectrumReadings& readings() const { return measuring_->readings(); }

private:
    void listStoredControls();
    void fillMenus();
    void connectControls();

    void startFreqTextChanged();
    void endFreqTextChanged();
    void numAvgTextChanged();
    void doFillMode();
    void doLogMode();
    void showUse();
    void doGridMode();
    void doFFTSize();
    void doWindow();
    void doInputGain();
    void updateBargraph();
    void makeRulers();
    void makeOverlayMenu();
    void makeExportMenu();
    MeasurementOrigin origin() const;
    std::vector<Setting> wordedSettings() const;
    ReportPicture picture();
    std::string table();
    void connectMeasuring();
    void takeChannel();
    void takeQuestion();
    void takeSpectrum();
    void capture(std::span<const std::int16_t> interleaved);
    void clearOverlays(const QString& reason);
    void calibrate();
    void doChannel();
    void doAverage();
    void doHold();
    void showRulers();
    void addHints(Hints& hints) const;

    const std::unique_ptr<Ui::SpectrumWindow> ui_;
    SpectrumDisplay display_;
    SpectrumAnalysis analysis_;
    SpectrumOverlays overlays_;
    OverlayMenu overlayMenu_{overlays_};
    std::unique_ptr<SpectrumMeasuring> measuring_;
    Preferences& preferences_;
    Ruler frequencyRuler_{Ruler::Side::Bottom, "Frequency", "Hz"};
    Ruler levelRuler_{Ruler::Side::Right, "Plotted level", "dB"};
    std::unique_ptr<InputSource> source_;
    bool hasNew_ = false; ///< a spectrum that the view has not been told of
    SpectrumDisplay heldDisplay_;
    QElapsedTimer hold_;         ///< since spectrum and readings are held; not valid while they are not
    QElapsedTimer lastSpectrum_; ///< since it came; not valid before the first
    QTimer bargraphTimer_;
};

} // namespace sonotrace
