#include "waterfall/WaterfallController.h"

#include "base/FftWindows.h"
#include "base/Numbers.h"
#include "base/SampleRate.h"
#include "base/SystemLog.h"
#include "ui_WaterfallWindow.h"
#include "waterfall/WaterfallExport.h"
#include "waterfall/WaterfallFindings.h"
#include "widgets/ExportMenu.h"
#include "widgets/FilePanels.h"
#include "widgets/InputHints.h"
#include "widgets/NumberField.h"
#include "widgets/Preferences.h"
#include "widgets/TypedValue.h"

#include <QDateTime>
#include <QShortcut>
#include <QTextDocument>

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr auto kMaxDbKey = "WATERFALL_maxDB";
constexpr auto kMinDbKey = "WATERFALL_minDB";
constexpr int kMeterInterval = 50; // ms
constexpr double kFirstVolume = 700.0;
constexpr double kFirstMaxDb = 75.0;
constexpr double kFirstMinDb = 25.0;
constexpr int kLeastStoredLog2 = 7;
constexpr int kMenuSizes = 12;
constexpr int kRulerInterval = 250; // ms

} // namespace

WaterfallController::WaterfallController(SoundSystem& system, Preferences& preferences)
    : ToolController(preferences, "WATERFALL_WINDOW_FRAME"),
      system_(system),
      preferences_(preferences),
      ui_(std::make_unique<Ui::WaterfallWindow>()),
      image_(std::make_unique<WaterfallImage>(parameters_, log_)),
      analysis_(parameters_, *image_, log_),
      measurement_(parameters_),
      fullPictures_(parameters_, *image_, preferences) {
    ui_->setupUi(&window_);
    levelRows(*ui_->inputPopup, {ui_->inputStrip, ui_->analysisStrip, ui_->measurementStrip,
                                 ui_->pictureStrip, ui_->slowStrip});
    keepRoom({ui_->minDBText, ui_->maxDBText, ui_->soundInputVolume2Value});
    showInputVolume(*ui_->soundInputVolume2, *ui_->soundInputVolume2Value, system.inputVolumeExponent());
    ui_->soundInputVolume2->setFirstValue(kFirstVolume, ui_->soundInputVolume2Label);
    letType(*ui_->minDbSlider, *ui_->minDBText, plainNotation("dB"));
    letType(*ui_->maxDbSlider, *ui_->maxDBText, plainNotation("dB"));
    ui_->gainText->setLook(NumberField::Look::Unused, "Kept with the settings, and does nothing");
    ui_->minDbSlider->setFirstValue(kFirstMinDb);
    ui_->maxDbSlider->setFirstValue(kFirstMaxDb);
    const auto showLevel = [](const RealSlider* slider, QLabel* label, const char* format) {
        connect(slider, &RealSlider::doubleValueChanged, label, [label, format](double value) {
            label->setText(QString::asprintf(format, truncateToInt32(value)));
        });
    };
    showLevel(ui_->minDbSlider, ui_->minDBText, "Min dB: %d");
    showLevel(ui_->maxDbSlider, ui_->maxDBText, "Max dB: %d");
    const CaptureVariant variant{.streamName = "Waterfall",
                                 .runLoop = nullptr,
                                 .printsEnqueue = true,
                                 .metersLevel = true,
                                 .folds = true,
                                 .startDiagnostic = "zWaterfallQueueIn"};
    source_ = std::make_unique<InputSource>(
        system, AudioDeviceTable::Variant::Input, variant,
        InputControls{ui_->inputPopup, ui_->soundInputVolume2, ui_->inputStatus},
        [this](std::span<const std::int16_t> interleaved) { capture(interleaved); });
    source_->setHints([this](Hints& hints) { addHints(hints); });
    // A long pass of lines must not keep the window waiting for its end.
    connect(source_.get(), &InputSource::aboutToStop, this, [this] { analysis_.interrupt(); });
    connect(source_.get(), &InputSource::aboutToStart, this, [this] { analysis_.resume(); });
    // Each start of the stream calls for a timer of its own beside those that run already. They would all do
    // the same work at the same rate, so one does it.
    connect(source_.get(), &InputSource::started, &bargraphTimer_, [this] {
        if (!bargraphTimer_.isActive())
            bargraphTimer_.start(kMeterInterval);
    });
    connect(&bargraphTimer_, &QTimer::timeout, this, &WaterfallController::updateBargraph);
    setUpAdditions();
}

/// The rulers and what stands under the usual controls.
void WaterfallController::setUpAdditions() {
    rulers_ = std::make_unique<WaterfallRulers>(
        parameters_, *image_,
        WaterfallSurroundings{*ui_->pictureGrid, *ui_->mainView, *ui_->colorBar, *ui_->readings});
    ui_->controlRows->setMaximumWidth(ui_->pictureGrid->maximumSize().width());
    for (const char* title : kChannelFoldTitles)
        ui_->channelPopup->addItem(title);
    for (const char* title : kLineMergeTitles)
        ui_->mergePopup->addItem(title);
    ui_->slowText->setStepLimits(0.0, kMostSlowSeconds);
    for (const auto& [key, owner] : std::initializer_list<std::pair<QKeySequence, QWidget*>>{
             {Qt::CTRL | Qt::Key_Space, &window_}, {Qt::Key_P, ui_->mainView}}) {
        auto* const shortcut = new QShortcut(key, owner);
        shortcut->setContext(owner == &window_ ? Qt::WindowShortcut : Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, ui_->pauseButton, &QAbstractButton::toggle);
    }
    const ExportMenu& menu =
        addExportMenu({*ui_->exportButton, preferences_, parameters_, *image_, *rulers_, *ui_->mainView,
                       [this] { return source_->origin(pause_.isValid() ? pause_.elapsed() : 0); },
                       [this] {
                           return std::vector<Setting>{{"Input volume", source_->volumeText().toStdString()}};
                       }});
    connect(&menu, &ExportMenu::said, source_.get(), &InputSource::showNotice);
    connect(ui_->pauseButton, &QAbstractButton::toggled, this, &WaterfallController::setPaused);
    connect(ui_->fitButton, &QAbstractButton::clicked, this, &WaterfallController::fitLimits);
    connect(ui_->channelPopup, &QComboBox::currentIndexChanged, this, [this](int index) {
        const auto channel = static_cast<ChannelFold>(index);
        parameters_.channel.store(channel, kRelaxed);
        source_->setFold(channel);
    });
    connect(ui_->mergePopup, &QComboBox::currentIndexChanged, this,
            [this](int index) { parameters_.lineMerge.store(static_cast<LineMerge>(index), kRelaxed); });
    connect(ui_->slowText, &QLineEdit::editingFinished, this, &WaterfallController::takeSlowSeconds);
    connect(ui_->pictureFolderButton, &QAbstractButton::clicked, this,
            &WaterfallController::choosePictureFolder);
    connect(ui_->mainView, &WaterfallView::rightClicked, this, [this](double x, double y) {
        rulers_->setReference({x, y});
    });
}

WaterfallController::~WaterfallController() {
    source_.reset();
    log_.write();
}

void WaterfallController::awakeFromNib() {
    ui_->mainView->setModel(*image_);
    image_->myinit();
    fillMenus();
    source_->GetSoundDevices();
    source_->SetSoundDevices();
    listStoredControls();
    stored_.restore();
    setMissingPairs();
    // Independent of the requested size, which the transform adopts with its first line.
    parameters_.waterfallFftLen.store(ui_->fftSizePopup->currentText().toDouble(), kRelaxed);
    parameters_.waterfallWindowType.store(ui_->windowPopup->currentIndex(), kRelaxed);
    takeSlowSeconds();
    showPictureFolder();
    source_->startSound();
    connectControls();
    hideSpareControls();
}

void WaterfallController::listStoredControls() {
    stored_.add("waterfallStartingFreq", *ui_->startFreqText, alsoInto(parameters_.waterfallStartFreq));
    stored_.add("waterfallEndingFreq", *ui_->endFreqText, alsoInto(parameters_.waterfallEndFreq));
    stored_.add("waterfallGain", *ui_->gainText, alsoInto(parameters_.waterfallGain));
    stored_.add("waterfallReceiverkHz", *ui_->receiverKHzText, alsoInto(parameters_.waterfallReceiverkHz));
    const auto setSpeedup = [this](std::int32_t stored) {
        parameters_.waterfallSpeedup.store(std::max(stored, 1), kRelaxed);
        ui_->speedupText->setDoubleValue(std::max(stored, 1));
    };
    stored_.addInteger("waterfallSpeedup", setSpeedup, [this] { return ui_->speedupText->integerValue(); });
    const auto setSize = [this](std::int32_t stored) {
        parameters_.fftSizeLog2.store(std::max(stored, kLeastStoredLog2), kRelaxed);
    };
    stored_.addInteger("fftSizeLog2", setSize, [this] { return parameters_.fftSizeLog2.load(kRelaxed); });
    const auto setColor = [this](std::int32_t stored) {
        parameters_.colorWaterfallPlot.store(stored, kRelaxed);
        ui_->colorButton->setChecked(stored != 0);
    };
    stored_.addInteger("colorWaterfallPlot", setColor,
                       [this] { return parameters_.colorWaterfallPlot.load(kRelaxed); });
    stored_.add("WATERFALL_inputPopup", *ui_->inputPopup);
    stored_.add("WATERFALL_fftSizePopup", *ui_->fftSizePopup);
    stored_.add("WATERFALL_windowPopup", *ui_->windowPopup);
    stored_.addVolume("soundInputVolume", *ui_->soundInputVolume2);
    const auto level = [this](const char* key, RealSlider& slider) {
        const auto restore = [&slider](double stored) { slider.setDoubleValue(static_cast<float>(stored)); };
        stored_.addDouble(key, restore, [&slider] { return slider.doubleValue(); });
    };
    level(kMaxDbKey, *ui_->maxDbSlider);
    level(kMinDbKey, *ui_->minDbSlider);
    stored_.add("WATERFALL_channelPopup", *ui_->channelPopup);
    stored_.add("WATERFALL_slowText", *ui_->slowText);
    stored_.add("WATERFALL_mergePopup", *ui_->mergePopup);
    stored_.add("WATERFALL_savePicturesButton", *ui_->savePicturesButton);
}

/// Where both values of a pair are 0, the store has never held them.
void WaterfallController::setMissingPairs() {
    if (parameters_.waterfallEndFreq.load(kRelaxed) == 0.0 &&
        parameters_.waterfallGain.load(kRelaxed) == 0.0) {
        parameters_.waterfallEndFreq.store(5000.0, kRelaxed);
        parameters_.waterfallGain.store(1.0, kRelaxed);
        parameters_.waterfallSpeedup.store(1, kRelaxed);
        ui_->endFreqText->setDoubleValue(5000.0);
        ui_->gainText->setDoubleValue(1.0);
        ui_->speedupText->setDoubleValue(1.0);
    }
    // Not from the sliders, which pin what they are given.
    if (preferences_.floatValue(kMaxDbKey) == 0.0F && preferences_.floatValue(kMinDbKey) == 0.0F) {
        ui_->maxDbSlider->setDoubleValue(kFirstMaxDb);
        ui_->minDbSlider->setDoubleValue(kFirstMinDb);
    }
}

void WaterfallController::fillMenus() {
    for (int i = 0; i < kMenuSizes; ++i)
        ui_->fftSizePopup->addItem(QString::number(64 << i));
    for (const char* title : kFftWindowTitles)
        ui_->windowPopup->addItem(title);
}

void WaterfallController::hideSpareControls() {
    for (QWidget* spare : std::initializer_list<QWidget*>{
             ui_->staticText1, ui_->staticText2, ui_->staticText3, ui_->staticText4, ui_->staticText5,
             ui_->receiverKHzText, ui_->filenameText, ui_->uploadButton, ui_->timestampButton,
             ui_->playthruButton, ui_->mouseHzText,
             ui_->signalKHzText}) // nothing is ever written into the last two
        spare->hide();
}

void WaterfallController::connectControls() {
    const auto onText = [this](const QLineEdit* field, auto handler) {
        connect(field, &QLineEdit::textChanged, this, handler);
    };
    onText(ui_->startFreqText, &WaterfallController::startFreqTextChanged);
    onText(ui_->endFreqText, &WaterfallController::endFreqTextChanged);
    onText(ui_->gainText, &WaterfallController::gainTextChanged);
    onText(ui_->speedupText, &WaterfallController::speedupTextChanged);
    onText(ui_->receiverKHzText, &WaterfallController::receiverTextChanged);
    connect(ui_->fftSizePopup, &QComboBox::activated, this, &WaterfallController::doFFTSize);
    connect(ui_->windowPopup, &QComboBox::activated, this, &WaterfallController::doWindow);
    connect(ui_->playthruButton, &QAbstractButton::clicked, this, &WaterfallController::doPlayThru);
    connect(ui_->timestampButton, &QAbstractButton::clicked, this, &WaterfallController::doTimestamp);
    connect(ui_->uploadButton, &QAbstractButton::clicked, this, &WaterfallController::doUploadButton);
    connect(ui_->menuSaveWaterfallPicture, &QAbstractButton::clicked, this,
            &WaterfallController::menuSaveWaterfallPicture);
    connect(ui_->mainView, &WaterfallView::rightClicked, this,
            [this](double x, double y) { measurement_.rightMouseDown(x, y); });
    connect(ui_->mainView, &WaterfallView::leftClicked, this, [this](double x, double y) {
        const WaterfallClick click =
            measurement_.mouseDown(x, y, static_cast<double>(image_->bounds().height));
        setMouseHz(click.frequency, click.deltaX);
    });
}

/// Capture thread.
void WaterfallController::capture(std::span<const std::int16_t> interleaved) {
    if (analysis_.capture(interleaved))
        redrawAsked_.store(1, kRelaxed); // posting an event would allocate
}

void WaterfallController::updateBargraph() {
    ui_->volumeLevel->setDoubleValue(static_cast<double>(source_->peakLevel()));
    parameters_.colorWaterfallPlot.store(ui_->colorButton->isChecked() ? 1 : 0, kRelaxed);
    parameters_.waterfallMaxDB.store(static_cast<float>(ui_->maxDbSlider->doubleValue()), kRelaxed);
    parameters_.waterfallMinDB.store(static_cast<float>(ui_->minDbSlider->doubleValue()), kRelaxed);
    log_.write();
    if (redrawAsked_.exchange(0, kRelaxed) != 0)
        ui_->mainView->update();
    showDroppedSamples();
    refreshRulers();
    saveFullPicture();
}

void WaterfallController::addHints(Hints& hints) const {
    if (pause_.isValid()) // before what else is wrong with a sound that is not drawn
        hints.insert(hints.begin(),
                     {Hint::Urgency::Warning,
                      QString("Paused for %1: Ctrl+Space goes on")
                          .arg(waitingTime(std::floor(static_cast<double>(pause_.elapsed()) / 1000.0)))});
    const double slowSamples = parameters_.slowSamples();
    if (slowSamples > 0.0)
        hints.push_back(
            {Hint::Urgency::Usual, QString("One column every %1 s").arg(slowSamples / kSampleRate)});
    const WaterfallFindings findings = findingsOf(parameters_);
    const auto warn = [&hints](bool isSo, const char* text) {
        if (isSo)
            hints.push_back({Hint::Urgency::Warning, text});
    };
    warn(findings.isPaused, "Paused by its speed-up: it takes 1 up to the FFT size");
    warn(findings.hasEqualLevels, "Min and Max dB are equal: there are two colours only");
    warn(findings.hasEqualLimits, "From and to are equal: all rows show the same frequency");
    warn(findings.showsOldRows, "What lies above 22050 Hz is old: nothing can be heard there");
    if (!fullPictures_.trouble().isEmpty())
        hints.push_back({Hint::Urgency::Warning, fullPictures_.trouble()});
}

void WaterfallController::showDroppedSamples() {
    const std::int64_t dropped = analysis_.droppedSamples();
    if (dropped == std::exchange(saidToBeDropped_, dropped))
        return;
    source_->showNotice(QString("The speed-up is too large: lines are dropped (%1 s of sound so far)")
                            .arg(static_cast<double>(dropped) / kSampleRate, 0, 'f', 1));
}

void WaterfallController::doFFTSize() {
    parameters_.fftSizeLog2.store(ui_->fftSizePopup->currentIndex() + 6, kRelaxed);
    systemLog("doFFTSize %d", parameters_.fftSizeLog2.load(kRelaxed));
}

void WaterfallController::doWindow() {
    parameters_.waterfallWindowType.store(ui_->windowPopup->currentIndex(), kRelaxed);
    systemLog("doWindow windowType %d", parameters_.waterfallWindowType.load(kRelaxed));
}

void WaterfallController::startFreqTextChanged() {
    systemLog("startFreqTextChanged");
    parameters_.waterfallStartFreq.store(ui_->startFreqText->doubleValue(), kRelaxed);
}

void WaterfallController::endFreqTextChanged() {
    systemLog("endFreqTextChanged");
    parameters_.waterfallEndFreq.store(ui_->endFreqText->doubleValue(), kRelaxed);
}

void WaterfallController::gainTextChanged() {
    systemLog("endFreqTextChanged"); // the text of its neighbour
    parameters_.waterfallGain.store(ui_->gainText->doubleValue(), kRelaxed);
}

void WaterfallController::speedupTextChanged() {
    systemLog("speedupTextChanged");
    parameters_.waterfallSpeedup.store(ui_->speedupText->integerValue(), kRelaxed);
}

void WaterfallController::receiverTextChanged() {
    systemLog("startFreqTextChanged"); // see gainTextChanged()
    parameters_.waterfallReceiverkHz.store(ui_->receiverKHzText->doubleValue(), kRelaxed);
}

void WaterfallController::setMouseHz(float frequency, float deltaX) {
    ui_->mouseFrequencyText->setText(QString::fromStdString(measurement_.setMouseHz(frequency, deltaX)));
}

/// Acts on the first of all devices, not on the chosen one.
void WaterfallController::doPlayThru() {
    const std::uint32_t value = ui_->playthruButton->isChecked() ? 1 : 0;
    systemLog("doPlayThru %d", static_cast<int>(value));
    const auto& ids = source_->devices().deviceIds;
    for (const std::uint32_t channel : {0U, 1U, 2U}) {
        const Status status = system_.setPlayThrough(ids.empty() ? 0 : ids.front(), channel, value);
        systemLog("set kAudioDevicePropertyPlayThru err=%d  %flag", status, static_cast<double>(value));
    }
}

void WaterfallController::doTimestamp() {
    systemLog("doTimestamp");
    ui_->filenameText->setText(QDateTime::currentDateTime().toString(kPictureTimeName) + ".png");
}

void WaterfallController::doUploadButton() {
    systemLog("doUploadButton");
    std::thread(UploadThread, "test").join();
}

QObject* WaterfallController::uploadOneFile(const QString&, const QString&, const QString&, const QString&,
                                            const QString&) {
    return nullptr;
}

void WaterfallController::menuSaveWaterfallPicture() {
    if (const auto path =
            askForFileToSave(&window_, preferences_, kPictures, "Choose file to save the picture to"))
        source_->showNotice(writeFile(*path, ui_->mainView->ReturnPNG(), "Picture saved to %1"));
}

void WaterfallController::setPaused(bool isPaused) {
    parameters_.paused.store(isPaused ? 1 : 0, kRelaxed);
    if (isPaused)
        pause_.start();
    else
        pause_.invalidate();
}

/// As if the user had moved the sliders.
void WaterfallController::fitLimits() {
    const auto limits = rulers_->readout().fittingLimits();
    if (!limits) {
        source_->showNotice("There is nothing in the picture yet that the limits could fit");
        return;
    }
    const auto [floor, ceiling] = *limits;
    ui_->minDbSlider->enterValue(floor);
    ui_->maxDbSlider->enterValue(ceiling);
    source_->showNotice(QString("New columns are painted from %1 to %2 dB").arg(floor).arg(ceiling));
}

/// Not with each key: on the way to "60" there may be no number, which would paint every line.
void WaterfallController::takeSlowSeconds() {
    const double seconds = ui_->slowText->doubleValue();
    parameters_.slowSeconds.store(seconds, kRelaxed);
    const bool isTaken = seconds == 0.0 || seconds * kSampleRate == parameters_.slowSamples();
    ui_->slowText->setLook(isTaken ? NumberField::Look::Usual : NumberField::Look::Refused,
                           QString("Works as %1 s").arg(parameters_.slowSamples() / kSampleRate));
}

/// Four times a second, while the window is seen.
void WaterfallController::refreshRulers() {
    if (!window_.isVisible() || window_.isMinimized() || !window_.updatesEnabled() ||
        (sinceRefresh_.isValid() && !sinceRefresh_.hasExpired(kRulerInterval)))
        return;
    sinceRefresh_.start();
    rulers_->refresh();
}

void WaterfallController::choosePictureFolder() {
    if (fullPictures_.chooseFolder(window_))
        showPictureFolder();
}

void WaterfallController::showPictureFolder() {
    const QString tip = QString("Full pictures are saved to %1").arg(fullPictures_.folder());
    ui_->pictureFolderButton->setToolTip(Qt::convertFromPlainText(tip));
    ui_->pictureFolderButton->setAccessibleDescription(tip);
}

void WaterfallController::saveFullPicture() {
    const QString said = fullPictures_.saveWhenFull(ui_->savePicturesButton->isChecked(),
                                                    [this] { return ui_->mainView->ReturnPNG(); });
    if (!said.isEmpty())
        source_->showNotice(said);
}

} // namespace sonotrace
