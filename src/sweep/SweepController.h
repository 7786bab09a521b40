#pragma once

#include "generator/SweepParameters.h"
#include "widgets/ToolController.h"

#include <QTimer>

#include <memory>

class QLabel;

namespace Ui {
class SweepWindow;
}

namespace sonotrace {

class OutputLevels;
class RealSlider;

/// The sweep's window. Every control writes its parameter at once, as it is: the render copes with any value.
/// Window thread.
class SweepController : public ToolController {
    Q_OBJECT

public:
    /// The arguments outlive the controller.
    SweepController(SweepParameters& parameters, const OutputLevels& levels, Preferences& preferences);
    ~SweepController() override;

    /// Loads what is stored into the controls and the parameters. Once.
    void awakeFromNib();

    void showWindow();

    /// Unticks the sweep, also where it runs although it is not ticked.
    void switchOff();

public Q_SLOTS:
    void doStartFreq();
    void doEndFreq();
    void doRate();
    void doAmplitudeLeft();
    void doAmplitudeRight();
    void doEnabled();
    void doLeftEnabled();
    void doRightEnabled();
    void doReverse();
    void doLogSweep();
    void doOneShot();
    void startFreqTextChanged();
    void endFreqTextChanged();
    void rateTextChanged();

private:
    void listStoredControls();
    void connectControls();
    void follow(RealSlider& slider, QLabel& readout);
    void showState();

    SweepParameters& parameters_;
    const OutputLevels& levels_;
    const std::unique_ptr<Ui::SweepWindow> ui_;
    QTimer stateTimer_;
};

} // namespace sonotrace
