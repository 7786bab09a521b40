#include "sweep/SweepController.h"

#include "base/SystemLog.h"
#include "sweep/SweepStatus.h"
#include "ui_SweepWindow.h"
#include "widgets/Preferences.h"

namespace sonotrace {

namespace {

constexpr auto kFrameKey = "SWEEP_WINDOW_FRAME";
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

SweepController::SweepController(SweepParameters& parameters, Preferences& preferences)
    : parameters_(parameters), preferences_(preferences), ui_(std::make_unique<Ui::SweepWindow>()) {
    systemLog("- (void)init");
    ui_->setupUi(&window_);
    window_.setAttribute(Qt::WA_QuitOnClose, false);
}

SweepController::~SweepController() = default;

void SweepController::awakeFromNib() {
    systemLog("- (void)awakeFromNib");
    preferences_.restoreFrame(window_, kFrameKey);
    follow(*ui_->amplitudeLeft, *ui_->amplitudeLeftReadout);
    follow(*ui_->amplitudeRight, *ui_->amplitudeRightReadout);
    // The switch beside the unit must not jump when it is clicked.
    ui_->rateUnit->setMinimumWidth(ui_->rateUnit->fontMetrics().horizontalAdvance(logRateUnit()));
    restoreNumbers();
    restoreSwitches();
    connectControls();
    showState();
    stateTimer_.start(kStateInterval);
}

void SweepController::restoreNumbers() {
    const auto stored = [this](const char* key) { return preferences_.floatValue(key); };
    ui_->startFreq->setFloatValue(stored("sweepStart"));
    ui_->endFreq->setFloatValue(stored("sweepEnd"));
    ui_->rate->setFloatValue(stored("sweepRate"));
    ui_->amplitudeLeft->setDoubleValue(static_cast<double>(stored("sweepAmplitudeLeft")));
    ui_->amplitudeRight->setDoubleValue(static_cast<double>(stored("sweepAmplitudeRight")));

    // From the store and not from the controls: a slider pins what it is given.
    parameters_.startFrequency.store(static_cast<double>(stored("sweepStart")), kRelaxed);
    parameters_.endFrequency.store(static_cast<double>(stored("sweepEnd")), kRelaxed);
    parameters_.rate.store(static_cast<double>(stored("sweepRate")), kRelaxed);
    parameters_.amplitudeLeft.store(static_cast<double>(stored("sweepAmplitudeLeft")), kRelaxed);
    parameters_.amplitudeRight.store(static_cast<double>(stored("sweepAmplitudeRight")), kRelaxed);
}

void SweepController::restoreSwitches() {
    const auto restore = [this](const char* key, std::atomic<std::int32_t>& parameter, QCheckBox& box) {
        const bool on = preferences_.booleanValue(key);
        parameter.store(on ? 1 : 0, kRelaxed);
        box.setChecked(on);
    };
    restore("sweepEnabled", parameters_.enabled, *ui_->enabledCheck);
    restore("sweepLeftEnabled", parameters_.leftEnabled, *ui_->leftEnabled);
    restore("sweepRightEnabled", parameters_.rightEnabled, *ui_->rightEnabled);
    restore("sweepReverse", parameters_.reverse, *ui_->reverse);
    restore("sweepLog", parameters_.log, *ui_->logSweep);
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

/// Keeps the per cent beside a slider, at a width that does not change with the digits.
void SweepController::follow(const RealSlider& slider, QLabel& readout) {
    readout.setMinimumWidth(readout.fontMetrics().horizontalAdvance("100.0 %"));
    connect(&slider, &RealSlider::doubleValueChanged, &readout,
            [&readout](double value) { readout.setText(QString("%1 %").arg(value * 100.0, 0, 'f', 1)); });
}

void SweepController::showState() {
    ui_->sweepState->setText(describeSweep(parameters_));
    ui_->rateUnit->setText(ui_->logSweep->isChecked() ? logRateUnit() : "Hz/s");
}

void SweepController::showWindow() {
    systemLog("- (void)showWindow");
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

void SweepController::applicationWillTerminate() {
    preferences_.setFloat("sweepStart", ui_->startFreq->doubleValue());
    preferences_.setFloat("sweepEnd", ui_->endFreq->doubleValue());
    preferences_.setFloat("sweepRate", ui_->rate->doubleValue());
    preferences_.setFloat("sweepAmplitudeLeft", ui_->amplitudeLeft->doubleValue());
    preferences_.setFloat("sweepAmplitudeRight", ui_->amplitudeRight->doubleValue());
    preferences_.setInteger("sweepEnabled", parameters_.enabled.load(kRelaxed));
    preferences_.setInteger("sweepLeftEnabled", parameters_.leftEnabled.load(kRelaxed));
    preferences_.setInteger("sweepRightEnabled", parameters_.rightEnabled.load(kRelaxed));
    preferences_.setInteger("sweepReverse", parameters_.reverse.load(kRelaxed));
    preferences_.setInteger("sweepLog", parameters_.log.load(kRelaxed));
    preferences_.setFrame(window_, kFrameKey);
    preferences_.synchronise();
}

} // namespace sonotrace
