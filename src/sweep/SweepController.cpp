#include "sweep/SweepController.h"

#include "base/SystemLog.h"
#include "generator/OutputLevels.h"
#include "sweep/SweepStatus.h"
#include "ui_SweepWindow.h"
#include "widgets/TypedValue.h"

#include <limits>

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr int kStateInterval = 200; // ms

void store(std::atomic<std::int32_t>& parameter, const QCheckBox& box) {
    parameter.store(box.isChecked() ? 1 : 0, kRelaxed);
}

/// The rate's unit in a logarithmic sweep: so much of itself the frequency grows a second.
QString logRateUnit() {
    return "× 0.046417 %/s";
}

} // namespace

SweepController::SweepController(SweepParameters& parameters, const OutputLevels& levels,
                                 Preferences& preferences)
    : ToolController(preferences, "SWEEP_WINDOW_FRAME"),
      parameters_(parameters),
      levels_(levels),
      ui_(std::make_unique<Ui::SweepWindow>()) {
    ui_->setupUi(&window_);
}

SweepController::~SweepController() = default;

void SweepController::awakeFromNib() {
    systemLog("- (void)awakeFromNib");
    follow(*ui_->amplitudeLeft, *ui_->amplitudeLeftReadout);
    follow(*ui_->amplitudeRight, *ui_->amplitudeRightReadout);
    // The switch beside the unit must not jump when it is clicked.
    ui_->rateUnit->setMinimumWidth(ui_->rateUnit->fontMetrics().horizontalAdvance(logRateUnit()));
    constexpr double kAnyRate = std::numeric_limits<double>::infinity();
    ui_->rate->setStepLimits(-kAnyRate, kAnyRate);
    listStoredControls();
    stored_.restore();
    connectControls();
    showState();
    stateTimer_.start(kStateInterval);
}

void SweepController::listStoredControls() {
    stored_.add("sweepStart", *ui_->startFreq, alsoInto(parameters_.startFrequency));
    stored_.add("sweepEnd", *ui_->endFreq, alsoInto(parameters_.endFrequency));
    stored_.add("sweepRate", *ui_->rate, alsoInto(parameters_.rate));
    stored_.add("sweepAmplitudeLeft", *ui_->amplitudeLeft, alsoInto(parameters_.amplitudeLeft));
    stored_.add("sweepAmplitudeRight", *ui_->amplitudeRight, alsoInto(parameters_.amplitudeRight));
    // Stored as the render has them, so that a pass that has ended by itself is not started again by the next
    // launch.
    const auto toggle = [this](const char* key, QCheckBox& box, std::atomic<std::int32_t>& parameter) {
        const auto restore = [&box, &parameter](std::int32_t stored) {
            box.setChecked(stored != 0);
            store(parameter, box);
        };
        stored_.addInteger(key, restore, [&parameter] { return parameter.load(kRelaxed); });
    };
    toggle("sweepEnabled", *ui_->enabledCheck, parameters_.enabled);
    toggle("sweepLeftEnabled", *ui_->leftEnabled, parameters_.leftEnabled);
    toggle("sweepRightEnabled", *ui_->rightEnabled, parameters_.rightEnabled);
    toggle("sweepReverse", *ui_->reverse, parameters_.reverse);
    toggle("sweepLog", *ui_->logSweep, parameters_.log);
}

void SweepController::connectControls() {
    const auto onField = [this](const NumberField* field, auto entered, auto typed) {
        connect(field, &QLineEdit::returnPressed, this, entered);
        connect(field, &QLineEdit::textChanged, this, typed);
    };
    onField(ui_->startFreq, &SweepController::doStartFreq, &SweepController::startFreqTextChanged);
    onField(ui_->endFreq, &SweepController::doEndFreq, &SweepController::endFreqTextChanged);
    onField(ui_->rate, &SweepController::doRate, &SweepController::rateTextChanged);
    connect(ui_->amplitudeLeft, &RealSlider::valueEdited, this, &SweepController::doAmplitudeLeft);
    connect(ui_->amplitudeRight, &RealSlider::valueEdited, this, &SweepController::doAmplitudeRight);
    const auto onClick = [this](const QAbstractButton* button, auto method) {
        connect(button, &QAbstractButton::clicked, this, method);
    };
    onClick(ui_->enabledCheck, &SweepController::doEnabled);
    onClick(ui_->leftEnabled, &SweepController::doLeftEnabled);
    onClick(ui_->rightEnabled, &SweepController::doRightEnabled);
    onClick(ui_->reverse, &SweepController::doReverse);
    onClick(ui_->logSweep, &SweepController::doLogSweep);
    onClick(ui_->oneShot, &SweepController::doOneShot);
    connect(&stateTimer_, &QTimer::timeout, this, &SweepController::showState);
}

/// Keeps the per cent beside a slider.
void SweepController::follow(RealSlider& slider, QLabel& readout) {
    keepRoom({&readout});
    letType(slider, readout, levels_.notation(parameters_.enabled));
    slider.setFirstValue(0.0);
    connect(&slider, &RealSlider::doubleValueChanged, &readout,
            [&readout](double value) { readout.setText(QString("%1 %").arg(value * 100.0, 0, 'f', 1)); });
}

void SweepController::showState() {
    ui_->sweepState->setText(describeSweep(parameters_));
    ui_->sweepPass->setText(describePass(parameters_));
    ui_->rateUnit->setText(ui_->logSweep->isChecked() ? logRateUnit() : "Hz/s");
}

void SweepController::showWindow() {
    systemLog("- (void)showWindow");
}

void SweepController::switchOff() {
    const bool running = parameters_.enabled.load(kRelaxed) != 0; // a one-shot pass does not tick the box
    if (!running && !ui_->enabledCheck->isChecked())
        return;
    ui_->enabledCheck->setChecked(false);
    doEnabled();
    showState();
}

void SweepController::doStartFreq() {
    systemLog("doStartFreq");
    parameters_.startFrequency.store(ui_->startFreq->doubleValue(), kRelaxed);
}

void SweepController::doEndFreq() {
    systemLog("doEndFreq");
    parameters_.endFrequency.store(ui_->endFreq->doubleValue(), kRelaxed);
}

void SweepController::doRate() {
    systemLog("doRate");
    parameters_.rate.store(ui_->rate->doubleValue(), kRelaxed);
}

void SweepController::doAmplitudeLeft() {
    systemLog("doAmplitudeLeft");
    parameters_.amplitudeLeft.store(ui_->amplitudeLeft->doubleValue(), kRelaxed);
}

void SweepController::doAmplitudeRight() {
    systemLog("amplitudeRight"); // the one line without "do"
    parameters_.amplitudeRight.store(ui_->amplitudeRight->doubleValue(), kRelaxed);
}

void SweepController::doEnabled() {
    systemLog("doEnabled");
    store(parameters_.enabled, *ui_->enabledCheck);
}

void SweepController::doLeftEnabled() {
    systemLog("doLeftEnabled");
    store(parameters_.leftEnabled, *ui_->leftEnabled);
}

void SweepController::doRightEnabled() {
    systemLog("doRightEnabled");
    store(parameters_.rightEnabled, *ui_->rightEnabled);
}

void SweepController::doReverse() {
    systemLog("doReverse");
    store(parameters_.reverse, *ui_->reverse);
}

void SweepController::doLogSweep() {
    systemLog("doLogSweep");
    store(parameters_.log, *ui_->logSweep);
    showState();
}

void SweepController::doOneShot() {
    systemLog("doOneShot");
    parameters_.startOneShot();
}

void SweepController::startFreqTextChanged() {
    systemLog("startFreqTextChanged");
    parameters_.startFrequency.store(ui_->startFreq->doubleValue(), kRelaxed);
}

void SweepController::endFreqTextChanged() {
    systemLog("endFreqTextChanged");
    parameters_.endFrequency.store(ui_->endFreq->doubleValue(), kRelaxed);
}

void SweepController::rateTextChanged() {
    systemLog("rateTextChanged");
    parameters_.rate.store(ui_->rate->doubleValue(), kRelaxed);
}

} // namespace sonotrace
