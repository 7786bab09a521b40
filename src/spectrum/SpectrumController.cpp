#include "spectrum/SpectrumController.h"

#include "base/FftWindows.h"
#include "base/Numbers.h"
#include "base/SystemLog.h"
#include "ui_SpectrumWindow.h"
#include "widgets/PopUp.h"
#include "widgets/Preferences.h"

#include <algorithm>
#include <bit>

namespace sonotrace {

namespace {

constexpr auto kFrameKey = "SPECTRUM_WINDOW_FRAME";
constexpr int kMeterInterval = 50; // ms
const QSize kDefaultSize(960, 620);
constexpr int kTicksPerState = 10; // the line below the plot needs no faster look
constexpr float kFullBrightness = 1000.0F;

/// The log lines of the frequencies show part of the number's bits, the low half of the double, not the
/// number.
int loggedBits(double value) {
    return static_cast<int>(std::bit_cast<std::uint64_t>(value) & 0xFFFFFFFFU);
}

} // namespace

SpectrumController::SpectrumController(SoundSystem& system, RunLoop& runLoop, Preferences& preferences)
    : preferences_(preferences),
      ui_(std::make_unique<Ui::SpectrumWindow>()),
      analysis_([this] { ui_->mainView->update(); }) {
    systemLog("- (void)init");
    ui_->setupUi(&window_);
    window_.setAttribute(Qt::WA_QuitOnClose, false);
    window_.resize(kDefaultSize);
    const CaptureVariant variant{.streamName = "Spectrum",
                                 .runLoop = &runLoop,
                                 .printsEnqueue = true,
                                 .metersLevel = true,
                                 .startDiagnostic = "AudioQueueStart"};
    source_ = std::make_unique<InputSource>(
        system, AudioDeviceTable::Variant::Spectrum, variant,
        InputControls{ui_->inputPopup, ui_->soundInputVolume2, ui_->inputStatus},
        [this](std::span<const std::int16_t> interleaved) { analysis_.capture(interleaved); });
}

SpectrumController::~SpectrumController() {
    source_->stopSound();
}

void SpectrumController::awakeFromNib() {
    preferences_.restoreFrame(window_, kFrameKey);
    restoreSettings();
    ui_->mainView->setModel(analysis_, display_);
    fillMenus();
    ui_->soundInputVolume2->setDoubleValue(
        truncateToInt32(preferences_.doubleValue("SPECTRUM_soundInputVolume")));
    source_->GetSoundDevices();
    source_->SetSoundDevices();
    selectItem(*ui_->inputPopup, preferences_.integerValue("inputPopup"));
    connect(&bargraphTimer_, &QTimer::timeout, this, &SpectrumController::updateBargraph);
    source_->startSound();
    bargraphTimer_.start(kMeterInterval);
    connectControls();
}

void SpectrumController::restoreSettings() {
    display_.spectrumStartFreq = preferences_.floatValue("spectrumStartFreq");
    const float end = preferences_.floatValue("spectrumEndFreq");
    display_.spectrumEndFreq = end == 0.0F ? 5000.0F : end;
    display_.fillMode = preferences_.integerValue("spectrumFillCheckbox");
    display_.logMode = preferences_.integerValue("spectrumLogCheckbox");
    display_.gridMode = preferences_.integerValue("spectrumGridCheckbox");
    const std::int32_t blocks = std::clamp(preferences_.integerValue("spectrumNumAvg"), 1, 100);
    analysis_.setNumAvg(blocks);
    const float brightness = preferences_.floatValue("gridBrightness");
    display_.gridBrightness =
        brightness > 0.0F && brightness <= kFullBrightness ? brightness : kFullBrightness;

    ui_->gridSlider->setDoubleValue(display_.gridBrightness);
    ui_->startFreqText->setFloatValue(static_cast<float>(display_.spectrumStartFreq));
    ui_->endFreqText->setFloatValue(static_cast<float>(display_.spectrumEndFreq));
    ui_->fillCheckbox->setChecked(display_.fillMode != 0);
    ui_->logCheckbox->setChecked(display_.logMode != 0);
    ui_->gridCheckbox->setChecked(display_.gridMode != 0);
    ui_->numAvgText->setDoubleValue(blocks);
}

void SpectrumController::fillMenus() {
    ui_->fftSizePopup->clear();
    for (const std::int32_t size : kSpectrumFftSizes)
        ui_->fftSizePopup->addItem(QString::number(size));
    selectItem(*ui_->fftSizePopup, preferences_.integerValue("SPECTRUM_fftSizePopup"));
    doFFTSize();

    ui_->windowPopup->clear();
    for (const char* title : kFftWindowTitles)
        ui_->windowPopup->addItem(title);
    const std::int32_t window = preferences_.integerValue("SPECTRUM_windowPopup");
    selectItem(*ui_->windowPopup, window);
    analysis_.setWindowType(window);
}

void SpectrumController::connectControls() {
    connect(ui_->startFreqText, &QLineEdit::textChanged, this, &SpectrumController::startFreqTextChanged);
    connect(ui_->endFreqText, &QLineEdit::textChanged, this, &SpectrumController::endFreqTextChanged);
    connect(ui_->numAvgText, &QLineEdit::textChanged, this, &SpectrumController::numAvgTextChanged);
    connect(ui_->fillCheckbox, &QCheckBox::clicked, this, &SpectrumController::doFillMode);
    connect(ui_->logCheckbox, &QCheckBox::clicked, this, &SpectrumController::doLogMode);
    connect(ui_->gridCheckbox, &QCheckBox::clicked, this, &SpectrumController::doGridMode);
    connect(ui_->fftSizePopup, &QComboBox::activated, this, &SpectrumController::doFFTSize);
    connect(ui_->windowPopup, &QComboBox::activated, this, &SpectrumController::doWindow);
    connect(ui_->soundInputVolume2, &QSlider::sliderReleased, this, &SpectrumController::doInputGain);
}

void SpectrumController::startFreqTextChanged() {
    display_.spectrumStartFreq = ui_->startFreqText->doubleValue();
    systemLog("startFreqTextChanged %d", loggedBits(display_.spectrumStartFreq));
}

void SpectrumController::endFreqTextChanged() {
    display_.spectrumEndFreq = ui_->endFreqText->doubleValue();
    systemLog("endFreqTextChanged %d", loggedBits(display_.spectrumEndFreq));
}

void SpectrumController::numAvgTextChanged() {
    analysis_.setNumAvg(ui_->numAvgText->integerValue());
    systemLog("numAvgTextChanged %d", analysis_.numAvg());
}

void SpectrumController::doFillMode() {
    systemLog("doFillMode");
    display_.fillMode = ui_->fillCheckbox->isChecked() ? 1 : 0;
}

void SpectrumController::doLogMode() {
    systemLog("doLogMode");
    display_.logMode = ui_->logCheckbox->isChecked() ? 1 : 0;
}

void SpectrumController::doGridMode() {
    systemLog("doGridMode");
    display_.gridMode = ui_->gridCheckbox->isChecked() ? 1 : 0;
}

void SpectrumController::doFFTSize() {
    analysis_.setFftSize(ui_->fftSizePopup->currentText().toInt());
}

void SpectrumController::doWindow() {
    analysis_.setWindowType(ui_->windowPopup->currentIndex());
    systemLog("doWindow windowType %d", analysis_.windowType());
}

void SpectrumController::doInputGain() {
    systemLog("doInputGain");
}

void SpectrumController::updateBargraph() {
    ui_->volumeLevel->setDoubleValue(static_cast<double>(source_->peakLevel()));
    display_.gridBrightness = static_cast<float>(ui_->gridSlider->doubleValue() * 0.001);
    if (++ticks_ % kTicksPerState == 0)
        source_->showState();
}

void SpectrumController::applicationWillTerminate() {
    preferences_.setFloat("spectrumStartFreq", ui_->startFreqText->doubleValue());
    preferences_.setFloat("spectrumEndFreq", ui_->endFreqText->doubleValue());
    preferences_.setInteger("spectrumFillCheckbox", ui_->fillCheckbox->isChecked() ? 1 : 0);
    preferences_.setInteger("spectrumLogCheckbox", ui_->logCheckbox->isChecked() ? 1 : 0);
    preferences_.setInteger("spectrumGridCheckbox", ui_->gridCheckbox->isChecked() ? 1 : 0);
    preferences_.setInteger("spectrumNumAvg", ui_->numAvgText->integerValue());
    preferences_.setFloat("gridBrightness", ui_->gridSlider->doubleValue());
    preferences_.setInteger("SPECTRUM_fftSizePopup", ui_->fftSizePopup->currentIndex());
    preferences_.setInteger("SPECTRUM_windowPopup", ui_->windowPopup->currentIndex());
    preferences_.setDouble("SPECTRUM_soundInputVolume", ui_->soundInputVolume2->integerValue());
    preferences_.setInteger("inputPopup", ui_->inputPopup->currentIndex());
    preferences_.setFrame(window_, kFrameKey);
    preferences_.synchronise();
}

} // namespace sonotrace
