#include "spectrum/SpectrumController.h"

#include "base/FftWindows.h"
#include "base/Numbers.h"
#include "base/SampleRate.h"
#include "base/SystemLog.h"
#include "spectrum/SpectrumAxes.h"
#include "spectrum/SpectrumReport.h"
#include "spectrum/SpectrumSettings.h"
#include "spectrum/SpectrumTable.h"
#include "ui_SpectrumWindow.h"
#include "widgets/ExportMenu.h"
#include "widgets/InputHints.h"
#include "widgets/LevelText.h"
#include "widgets/TypedValue.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr int kMeterInterval = 50; // ms
constexpr int kMostPowerAverages = 1000;
constexpr float kFirstAverage = 10.0F; // spectra, where nothing is stored
constexpr int kMostAverages = 100;     // from the store and with the keys; what is typed has no limit
constexpr float kFullBrightness = 1000.0F;
constexpr double kLongWait = 2.0;  // s, from where on what is left is said
constexpr double kSlowBlock = 1.0; // s

/// The log lines of the frequencies show part of the number's bits, the low half of the double, not the
/// number.
int loggedBits(double value) {
    return static_cast<int>(std::bit_cast<std::uint64_t>(value) & 0xFFFFFFFFU);
}

} // namespace

SpectrumController::SpectrumController(SoundSystem& system, RunLoop& runLoop, Preferences& preferences)
    : ToolController(preferences, "SPECTRUM_WINDOW_FRAME"),
      ui_(std::make_unique<Ui::SpectrumWindow>()),
      analysis_([this] { takeSpectrum(); }),
      preferences_(preferences) {
    ui_->setupUi(&window_);
    levelRows(*ui_->inputPopup, {ui_->inputStrip, ui_->analysisStrip, ui_->displayStrip, ui_->measureStrip,
                                 ui_->readingsStrip});
    ui_->numAvgText->setStepLimits(1.0, kMostAverages);
    ui_->averageCountText->setStepLimits(1.0, kMostPowerAverages);
    keepRoom({ui_->soundInputVolume2Value});
    showInputVolume(*ui_->soundInputVolume2, *ui_->soundInputVolume2Value, system.inputVolumeExponent());
    ui_->soundInputVolume2->setFirstValue(0.0, ui_->soundInputVolume2Label);
    ui_->gridSlider->setFirstValue(kFullBrightness, ui_->gridSliderLabel);
    const CaptureVariant variant{.streamName = "Spectrum",
                                 .runLoop = &runLoop,
                                 .printsEnqueue = true,
                                 .metersLevel = true,
                                 .folds = true,
                                 .startDiagnostic = "AudioQueueStart"};
    source_ = std::make_unique<InputSource>(
        system, AudioDeviceTable::Variant::Spectrum, variant,
        InputControls{ui_->inputPopup, ui_->soundInputVolume2, ui_->inputStatus},
        [this](std::span<const std::int16_t> interleaved) { capture(interleaved); });
    source_->setHints([this](Hints& hints) { addHints(hints); });
    measuring_ = std::make_unique<SpectrumMeasuring>(analysis_, display_, *ui_->mainView,
                                                     *ui_->pointerReadings, *ui_->readings);
    makeRulers();
    makeOverlayMenu();
    makeExportMenu();
}

SpectrumController::~SpectrumController() = default;

void SpectrumController::awakeFromNib() {
    ui_->mainView->setModel(analysis_, display_);
    ui_->mainView->setOverlays(overlays_);
    fillMenus();
    source_->GetSoundDevices();
    source_->SetSoundDevices();
    listStoredControls();
    stored_.restore();
    showUse();
    doFFTSize();
    takeChannel();
    doAverage();
    takeQuestion();
    connect(&bargraphTimer_, &QTimer::timeout, this, &SpectrumController::updateBargraph);
    source_->startSound();
    bargraphTimer_.start(kMeterInterval);
    connectControls();
    connectMeasuring();
}

void SpectrumController::listStoredControls() {
    stored_.add("spectrumStartFreq", *ui_->startFreqText, alsoInto(display_.spectrumStartFreq));
    stored_.add("spectrumEndFreq", *ui_->endFreqText, [this](float stored) {
        const float end = stored == 0.0F ? 5000.0F : stored;
        display_.spectrumEndFreq = end;
        return end;
    });
    stored_.add("spectrumFillCheckbox", *ui_->fillCheckbox, alsoInto(display_.fillMode));
    stored_.add("spectrumLogCheckbox", *ui_->logCheckbox, alsoInto(display_.logMode));
    stored_.add("spectrumGridCheckbox", *ui_->gridCheckbox, alsoInto(display_.gridMode));
    const auto setNumAvg = [this](std::int32_t stored) {
        analysis_.setNumAvg(std::clamp(stored, 1, kMostAverages));
        ui_->numAvgText->setDoubleValue(analysis_.numAvg());
    };
    stored_.addInteger("spectrumNumAvg", setNumAvg, [this] { return ui_->numAvgText->integerValue(); });
    stored_.add("gridBrightness", *ui_->gridSlider, [this](float stored) {
        return display_.gridBrightness =
                   stored > 0.0F && stored <= kFullBrightness ? stored : kFullBrightness;
    });
    stored_.add("SPECTRUM_fftSizePopup", *ui_->fftSizePopup);
    stored_.add("SPECTRUM_windowPopup", *ui_->windowPopup, [this](std::int32_t stored) {
        analysis_.setWindowType(stored);
        return stored;
    });
    stored_.addVolume("SPECTRUM_soundInputVolume", *ui_->soundInputVolume2);
    stored_.add("inputPopup", *ui_->inputPopup);
    stored_.add("SPECTRUM_channelPopup", *ui_->channelPopup);
    stored_.add("SPECTRUM_averagePopup", *ui_->averagePopup);
    stored_.add("SPECTRUM_averageCount", *ui_->averageCountText,
                [](float stored) { return stored == 0.0F ? kFirstAverage : stored; });
    stored_.add("SPECTRUM_harmonicsCheckbox", *ui_->harmonicsCheckbox);
    stored_.add("SPECTRUM_mainsPopup", *ui_->mainsPopup);
}

void SpectrumController::fillMenus() {
    for (const std::int32_t size : kSpectrumFftSizes)
        ui_->fftSizePopup->addItem(QString::number(size));
    for (const char* title : kFftWindowTitles)
        ui_->windowPopup->addItem(title);
    for (const char* title : kChannelFoldTitles)
        ui_->channelPopup->addItem(title);
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
    showUse();
}

/// The frequencies may be edited meanwhile: they are only not looked at.
void SpectrumController::showUse() {
    const auto look = display_.logMode != 0 ? NumberField::Look::Unused : NumberField::Look::Usual;
    for (NumberField* field : {ui_->startFreqText, ui_->endFreqText})
        field->setLook(look, "Not used: the logarithmic axis goes from 1 Hz to 20 kHz");
}

void SpectrumController::doGridMode() {
    systemLog("doGridMode");
    display_.gridMode = ui_->gridCheckbox->isChecked() ? 1 : 0;
}

void SpectrumController::doFFTSize() {
    analysis_.setFftSize(ui_->fftSizePopup->currentText().toInt());
    clearOverlays("the FFT size has changed");
}

void SpectrumController::doWindow() {
    analysis_.setWindowType(ui_->windowPopup->currentIndex());
    systemLog("doWindow windowType %d", analysis_.windowType());
    clearOverlays("the window has changed");
}

void SpectrumController::doInputGain() {
    systemLog("doInputGain");
}

/// Why the trace is not what it seems, or stands still.
void SpectrumController::addHints(Hints& hints) const {
    if (hold_.isValid())
        hints.push_back({Hint::Urgency::Progress,
                         "Held for " + waitingTime(static_cast<double>(hold_.elapsed()) / 1000.0)});
    const double start = display_.spectrumStartFreq;
    const double end = display_.spectrumEndFreq;
    if (display_.logMode == 0 && start >= end)
        hints.push_back({Hint::Urgency::Warning, "From is not below to: the trace says nothing"});
    else if (display_.logMode == 0 && end > kSampleRate / 2.0)
        hints.push_back({Hint::Urgency::Warning, "Above 22050 Hz the trace is mirrored"});
    const SpectrumProgress progress = analysis_.progress();
    if (progress.blocks > 1) {
        QString text = QString("Averaging: block %1 of %2").arg(progress.block).arg(progress.blocks);
        if (progress.secondsLeft > kLongWait)
            text += ", " + waitingTime(progress.secondsLeft) + " left";
        hints.push_back({Hint::Urgency::Progress, text});
    } else if (progress.blockSeconds > kSlowBlock) {
        hints.push_back({Hint::Urgency::Progress, QString("Waits for %1 samples: %2")
                                                      .arg(analysis_.fftSize())
                                                      .arg(waitingTime(progress.blockSeconds))});
    }
}

void SpectrumController::makeRulers() {
    ui_->plot->addWidget(&levelRuler_, 0, 1);
    ui_->plot->addWidget(&frequencyRuler_, 1, 0);
    frequencyRuler_.setMargins(kLeftMargin, kRightMargin);
}

void SpectrumController::showRulers() {
    frequencyRuler_.setAxis(frequencyAxis(display_));
    const SpectrumGeometry geometry = ui_->mainView->plotGeometry();
    levelRuler_.setAxis(levelAxis(geometry, ui_->mainView->height()));
    levelRuler_.setMargins(geometry.yFloor, 0.0);
}

void SpectrumController::makeOverlayMenu() {
    ui_->overlaysButton->setMenu(&overlayMenu_);
    connect(&overlayMenu_, &OverlayMenu::changed, ui_->mainView, qOverload<>(&QWidget::update));
    connect(&overlayMenu_, &OverlayMenu::nothingToStore, this,
            [this] { source_->showNotice("There is no spectrum yet to store"); });
}

void SpectrumController::makeExportMenu() {
    const auto missing = [this] {
        return analysis_.bins().isEmpty() ? QString("There is no spectrum yet to export") : QString();
    };
    auto* const menu = new ExportMenu(*ui_->exportButton, preferences_,
                                      {missing, [this] { return picture(); },
                                       [this] { return ui_->mainView->size(); }, [this] { return table(); }});
    connect(menu, &ExportMenu::said, source_.get(), &InputSource::showNotice);
}

MeasurementOrigin SpectrumController::origin() const {
    return source_->origin(lastSpectrum_.isValid() ? lastSpectrum_.elapsed() : 0);
}

std::vector<Setting> SpectrumController::wordedSettings() const {
    const SpectrumQuestion& question = measuring_->question();
    std::vector<Setting> words =
        worded(SpectrumSettings{.fftSize = analysis_.bins().fftSize,
                                .window = analysis_.spectrumWindow(),
                                .fold = analysis_.spectrumFold(),
                                .blocks = analysis_.summedBlocks(),
                                .averageKind = overlays_.average().kind(),
                                .averagedSpectra = overlays_.average().spectra(),
                                .display = display_,
                                .fundamentalHz = question.fundamentalHz,
                                .mainsHz = question.mainsHz,
                                .calibration = source_->calibration(),
                                .correctionPoints = source_->correction().points().size()});
    words.push_back({"Input volume", source_->volumeText().toStdString()});
    return words;
}

ReportPicture SpectrumController::picture() {
    measuring_->readNow();
    const ReportContent content{.title = {},
                                .origin = origin(),
                                .settings = wordedSettings(),
                                .readings = measuring_->shownReadings()};
    return spectrumReport(content, {{analysis_.powerSpectrum(), analysis_.bins().fftSize},
                                    display_,
                                    &overlays_,
                                    ui_->mainView->marks()});
}

std::string SpectrumController::table() {
    const Axis shown = frequencyAxis(display_);
    return spectrumTable(origin(), wordedSettings(), shownTraces(analysis_, overlays_), shown.from, shown.to);
}

void SpectrumController::connectMeasuring() {
    connect(ui_->channelPopup, &QComboBox::activated, this, &SpectrumController::doChannel);
    connect(ui_->averagePopup, &QComboBox::activated, this, &SpectrumController::doAverage);
    connect(ui_->averageCountText, &QLineEdit::textChanged, this, &SpectrumController::doAverage);
    connect(ui_->holdButton, &QPushButton::clicked, this, &SpectrumController::doHold);
    connect(ui_->harmonicsCheckbox, &QCheckBox::clicked, this, &SpectrumController::takeQuestion);
    connect(ui_->fundamentalText, &QLineEdit::textChanged, this, &SpectrumController::takeQuestion);
    connect(ui_->mainsPopup, &QComboBox::activated, this, &SpectrumController::takeQuestion);
    connect(source_.get(), &InputSource::calibrationChanged, this, &SpectrumController::calibrate);
    calibrate();
    connect(source_.get(), &InputSource::aboutToStart, this,
            [this] { clearOverlays("the input has changed"); });
}

void SpectrumController::takeChannel() {
    const auto fold = static_cast<ChannelFold>(std::max(ui_->channelPopup->currentIndex(), 0));
    analysis_.setFold(fold);
    source_->setFold(fold);
}

/// What is asked of each spectrum.
void SpectrumController::takeQuestion() {
    measuring_->setHarmonicsListed(ui_->harmonicsCheckbox->isChecked());
    const double fundamental = ui_->fundamentalText->doubleValue();
    measuring_->setFundamental(fundamental > 0.0 ? std::optional(fundamental) : std::nullopt);
    constexpr double kMains[] = {0.0, 50.0, 60.0};
    measuring_->setMains(kMains[std::clamp(ui_->mainsPopup->currentIndex(), 0, 2)]);
}

void SpectrumController::takeSpectrum() {
    if (analysis_.isWhole()) // else it would be too low, for as long as it is a part of them
        overlays_.add(analysis_.bins());
    measuring_->takeNewSpectrum();
    lastSpectrum_.start();
    hasNew_ = true;
}

/// Of the many short spectra that a buffer may hold, the last is the one to be seen.
void SpectrumController::capture(std::span<const std::int16_t> interleaved) {
    if (hold_.isValid())
        return;
    analysis_.capture(interleaved);
    if (std::exchange(hasNew_, false))
        ui_->mainView->showSpectrum();
}

/// What they have collected does not fit what comes. Nor does what is held.
void SpectrumController::clearOverlays(const QString& reason) {
    if (hold_.isValid())
        ui_->holdButton->click();
    if (overlays_.clear())
        source_->showNotice("Average and peak hold begin anew: " + reason);
}

void SpectrumController::calibrate() {
    measuring_->setLevelText([calibration = source_->calibration()](double levelDbfs) {
        return levelText(calibration, levelDbfs);
    });
    std::function<double(double)> responseDb;
    if (!source_->correction().isEmpty())
        responseDb = [this](double frequencyHz) { return source_->correction().correctionDb(frequencyHz); };
    measuring_->setResponse(responseDb);
    overlayMenu_.setResponse(responseDb);
}

void SpectrumController::doChannel() {
    takeChannel();
    analysis_.startAfresh();
    clearOverlays("the channel has changed");
}

void SpectrumController::doAverage() {
    const double spectra = ui_->averageCountText->doubleValue();
    const bool isTaken = spectra >= 1.0 && spectra <= kMostPowerAverages;
    ui_->averageCountText->setLook(isTaken ? NumberField::Look::Usual : NumberField::Look::Refused,
                                   "Taken as the nearest number from 1 to 1000");
    overlays_.setAverage(static_cast<AverageKind>(std::max(ui_->averagePopup->currentIndex(), 0)),
                         truncateToInt32(std::clamp(spectra, 1.0, double{kMostPowerAverages})));
    ui_->mainView->update();
}

void SpectrumController::doHold() {
    if (ui_->holdButton->isChecked()) {
        hold_.start();
        heldDisplay_ = display_;
        return;
    }
    hold_.invalidate();
    analysis_.startAfresh(); // what was collected before lies too far back
}

void SpectrumController::updateBargraph() {
    ui_->volumeLevel->setDoubleValue(static_cast<double>(source_->peakLevel()));
    display_.gridBrightness = static_cast<float>(ui_->gridSlider->doubleValue() * 0.001);
    showRulers();
    measuring_->update();
    // No spectrum comes to show what the controls say.
    if (hold_.isValid() && std::exchange(heldDisplay_, display_) != display_)
        ui_->mainView->update();
}

} // namespace sonotrace
