#include "waterfall/WaterfallController.h"

#include "base/FftWindows.h"
#include "base/Numbers.h"
#include "base/SystemLog.h"
#include "ui_WaterfallWindow.h"
#include "widgets/FilePanels.h"
#include "widgets/PopUp.h"
#include "widgets/Preferences.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSaveFile>
#include <QTimer>

#include <algorithm>
#include <thread>

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr auto kFrameKey = "WATERFALL_WINDOW_FRAME";
const QSize kDefaultSize(960, 700);
constexpr int kMeterInterval = 50; // ms
constexpr int kTicksPerState = 10;
constexpr int kLeastStoredLog2 = 7;
constexpr int kMenuSizes = 12;

QString decibels(const char* format, double value) {
    return QString::asprintf(format, truncateToInt32(value));
}

/// There is nothing to upload to.
void UploadThread(const char*) {}

} // namespace

WaterfallController::WaterfallController(SoundSystem& system, Preferences& preferences)
    : system_(system),
      preferences_(preferences),
      ui_(std::make_unique<Ui::WaterfallWindow>()),
      image_(std::make_unique<WaterfallImage>(parameters_, log_)),
      measurement_(parameters_) {
    systemLog("- (void)init");
    ui_->setupUi(&window_);
    analysis_.emplace(parameters_, *image_, log_);
    window_.setAttribute(Qt::WA_QuitOnClose, false);
    window_.resize(kDefaultSize);
    for (QLabel* label : {ui_->minDBText, ui_->maxDBText})
        label->setMinimumWidth(label->sizeHint().width()); // its longest text: the slider beside it stays put
    const CaptureVariant variant{.streamName = "Waterfall",
                                 .runLoop = nullptr,
                                 .printsEnqueue = true,
                                 .metersLevel = true,
                                 .startDiagnostic = "zWaterfallQueueIn"};
    source_ = std::make_unique<InputSource>(
        system, AudioDeviceTable::Variant::Input, variant,
        InputControls{ui_->inputPopup, ui_->soundInputVolume2, ui_->inputStatus},
        [this](std::span<const std::int16_t> interleaved) { capture(interleaved); });
    // A long pass of lines must not keep the window waiting for its end.
    connect(source_.get(), &InputSource::aboutToStop, this, [this] { analysis_->interrupt(); });
    connect(source_.get(), &InputSource::aboutToStart, this, [this] { analysis_->resume(); });
    connect(source_.get(), &InputSource::started, this, &WaterfallController::addBargraphTimer);
}

WaterfallController::~WaterfallController() {
    source_->stopSound();
    log_.write();
}

void WaterfallController::awakeFromNib() {
    preferences_.restoreFrame(window_, kFrameKey);
    restoreSettings();
    ui_->mainView->setModel(*image_);
    image_->myinit();
    fillProvisionalSizes();
    source_->GetSoundDevices();
    source_->SetSoundDevices();
    selectItem(*ui_->inputPopup, preferences_.integerValue("WATERFALL_inputPopup"));
    source_->startSound();
    connectControls();
    fillMenus();
    hideSpareControls();
    restoreScale();
}

void WaterfallController::restoreSettings() {
    float end = preferences_.floatValue("waterfallEndingFreq");
    float gain = preferences_.floatValue("waterfallGain");
    std::int32_t speedup = std::max(preferences_.integerValue("waterfallSpeedup"), 1);
    if (end == 0.0F && gain == 0.0F) {
        end = 5000.0F;
        gain = 1.0F;
        speedup = 1;
    }
    const float start = preferences_.floatValue("waterfallStartingFreq");
    const float receiver = preferences_.floatValue("waterfallReceiverkHz");
    parameters_.waterfallStartFreq.store(start, kRelaxed);
    parameters_.waterfallEndFreq.store(end, kRelaxed);
    parameters_.waterfallGain.store(gain, kRelaxed);
    parameters_.waterfallSpeedup.store(speedup, kRelaxed);
    parameters_.waterfallReceiverkHz.store(receiver, kRelaxed);
    parameters_.fftSizeLog2.store(std::max(preferences_.integerValue("fftSizeLog2"), kLeastStoredLog2),
                                  kRelaxed);
    parameters_.colorWaterfallPlot.store(preferences_.integerValue("colorWaterfallPlot"), kRelaxed);

    ui_->colorButton->setChecked(parameters_.colorWaterfallPlot.load(kRelaxed) != 0);
    ui_->startFreqText->setFloatValue(start);
    ui_->endFreqText->setFloatValue(end);
    ui_->gainText->setFloatValue(gain);
    ui_->speedupText->setDoubleValue(speedup);
    ui_->receiverKHzText->setFloatValue(receiver);
    ui_->soundInputVolume2->setDoubleValue(truncateToInt32(preferences_.doubleValue("soundInputVolume")));
}

/// What the menu shows until its own entries are in, which is when the stream has started.
void WaterfallController::fillProvisionalSizes() {
    ui_->fftSizePopup->clear();
    for (int i = 0; i < kMenuSizes; ++i)
        ui_->fftSizePopup->addItem(QString::number(128 << i));
    selectItem(*ui_->fftSizePopup, parameters_.fftSizeLog2.load(kRelaxed) - kLeastStoredLog2);
}

void WaterfallController::fillMenus() {
    ui_->fftSizePopup->clear();
    for (int i = 0; i < kMenuSizes; ++i)
        ui_->fftSizePopup->addItem(QString::number(64 << i));
    selectItem(*ui_->fftSizePopup, preferences_.integerValue("WATERFALL_fftSizePopup"));
    // Independent of the requested size, which the transform adopts with its first line.
    parameters_.waterfallFftLen.store(ui_->fftSizePopup->currentText().toDouble(), kRelaxed);

    ui_->windowPopup->clear();
    for (const char* title : kFftWindowTitles)
        ui_->windowPopup->addItem(QString::fromLatin1(title));
    selectItem(*ui_->windowPopup, preferences_.integerValue("WATERFALL_windowPopup"));
    parameters_.waterfallWindowType.store(ui_->windowPopup->currentIndex(), kRelaxed);
}

void WaterfallController::hideSpareControls() {
    for (QWidget* spare : std::initializer_list<QWidget*>{
             ui_->staticText1, ui_->staticText2, ui_->staticText3, ui_->staticText4, ui_->staticText5,
             ui_->receiverKHzText, ui_->filenameText, ui_->uploadButton, ui_->timestampButton,
             ui_->playthruButton, ui_->mouseHzText,
             ui_->signalKHzText}) // nothing is ever written into the last two
        spare->hide();
}

void WaterfallController::restoreScale() {
    float ceiling = preferences_.floatValue("WATERFALL_maxDB");
    float floor = preferences_.floatValue("WATERFALL_minDB");
    if (ceiling == 0.0F && floor == 0.0F) {
        ceiling = 75.0F;
        floor = 25.0F;
    }
    ui_->maxDbSlider->setDoubleValue(ceiling);
    ui_->minDbSlider->setDoubleValue(floor);
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
    analysis_->capture(interleaved);
    redrawAsked_.store(1, kRelaxed); // posting an event would allocate
}

/// One more with every start of the stream; they all keep going.
void WaterfallController::addBargraphTimer() {
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &WaterfallController::updateBargraph);
    timer->start(kMeterInterval);
}

void WaterfallController::updateBargraph() {
    ui_->volumeLevel->setDoubleValue(static_cast<double>(source_->peakLevel()));
    parameters_.colorWaterfallPlot.store(ui_->colorButton->isChecked() ? 1 : 0, kRelaxed);
    parameters_.waterfallMaxDB.store(static_cast<float>(ui_->maxDbSlider->doubleValue()), kRelaxed);
    parameters_.waterfallMinDB.store(static_cast<float>(ui_->minDbSlider->doubleValue()), kRelaxed);
    ui_->minDBText->setText(decibels("Min dB: %d", ui_->minDbSlider->doubleValue()));
    ui_->maxDBText->setText(decibels("Max dB: %d", ui_->maxDbSlider->doubleValue()));
    log_.write();
    if (redrawAsked_.exchange(0, kRelaxed) != 0)
        ui_->mainView->update();
    if (++ticks_ % kTicksPerState == 0)
        source_->showState();
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
    ui_->filenameText->setText(QDateTime::currentDateTime().toString("yyyy-MM-dd-HH.mm.ss") + ".png");
}

void WaterfallController::doUploadButton() {
    systemLog("doUploadButton");
    std::thread(UploadThread, "test").join();
}

void WaterfallController::menuSaveWaterfallPicture() {
    const auto path = askForFileToSave(&window_, tr("Choose file to save the picture to"),
                                       tr("PNG pictures (*.png)"), "png");
    if (!path)
        return;
    QSaveFile file(*path);
    const QByteArray picture = ui_->mainView->ReturnPNG();
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(picture) == picture.size() && file.commit();
    const QString name = QFileInfo(*path).fileName();
    source_->showNotice(written ? tr("Picture saved to %1").arg(name)
                                : tr("%1 cannot be written: %2").arg(name, file.errorString()));
}

void WaterfallController::applicationWillTerminate() {
    preferences_.setFloat("waterfallStartingFreq", ui_->startFreqText->doubleValue());
    preferences_.setFloat("waterfallEndingFreq", ui_->endFreqText->doubleValue());
    preferences_.setFloat("waterfallGain", ui_->gainText->doubleValue());
    preferences_.setInteger("waterfallSpeedup", ui_->speedupText->integerValue());
    preferences_.setFloat("waterfallReceiverkHz", ui_->receiverKHzText->doubleValue());
    preferences_.setInteger("fftSizeLog2", parameters_.fftSizeLog2.load(kRelaxed));
    preferences_.setInteger("WATERFALL_inputPopup", ui_->inputPopup->currentIndex());
    preferences_.setInteger("WATERFALL_fftSizePopup", ui_->fftSizePopup->currentIndex());
    preferences_.setInteger("WATERFALL_windowPopup", ui_->windowPopup->currentIndex());
    preferences_.setDouble("soundInputVolume", ui_->soundInputVolume2->integerValue());
    preferences_.setDouble("WATERFALL_maxDB", ui_->maxDbSlider->doubleValue());
    preferences_.setDouble("WATERFALL_minDB", ui_->minDbSlider->doubleValue());
    preferences_.setInteger("colorWaterfallPlot", parameters_.colorWaterfallPlot.load(kRelaxed));
    preferences_.setFrame(window_, kFrameKey);
    preferences_.synchronise();
}

} // namespace sonotrace
