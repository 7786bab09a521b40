#include "scope/ScopeController.h"

#include "base/PlainNumber.h"
#include "base/SampleRate.h"
#include "scope/ScopeAxes.h"
#include "scope/ScopeNotations.h"
#include "scope/ScopeReport.h"
#include "scope/ScopeSettings.h"
#include "scope/ScopeTable.h"
#include "scope/SteadyTrigger.h"
#include "scope/TriggerSearch.h"
#include "ui_ScopeWindow.h"
#include "widgets/ExportMenu.h"
#include "widgets/InputHints.h"
#include "widgets/RealSlider.h"
#include "widgets/Ruler.h"
#include "widgets/TypedValue.h"

#include <cmath>

namespace sonotrace {

namespace {

// What the sliders are set to when nothing is stored: far outside their ranges, so that they stand at their
// ends.
constexpr float kNoRange = 50000.0F;
constexpr float kNoSweep = 600.0F;

constexpr double kMillisecond = 0.001; // s

/// A slider left at exactly 0 counts as one that was never stored.
auto storedOr(float fallback) {
    return [fallback](float stored) { return stored == 0.0F ? fallback : stored; };
}

} // namespace

ScopeController::ScopeController(SoundSystem& system, RunLoop& runLoop, Preferences& preferences)
    : ToolController(preferences, "SCOPE_WINDOW_FRAME"),
      ui_(std::make_unique<Ui::ScopeWindow>()),
      capture_(controls_, [this] { takeBlock(); }),
      delay_(kScopeSignal, kSampleRate) {
    ui_->setupUi(&window_);
    levelRows(*ui_->inputPopup, {ui_->inputStrip, ui_->timeStrip, ui_->measureStrip});
    keepRoom({ui_->rangeValue1, ui_->rangeValue2, ui_->offsetValue1, ui_->offsetValue2, ui_->triggerValue1,
              ui_->triggerValue2, ui_->sweepValue, ui_->soundInputVolume2Value});
    showInputVolume(*ui_->soundInputVolume2, *ui_->soundInputVolume2Value, system.inputVolumeExponent());
    ui_->soundInputVolume2->setFirstValue(0.0, ui_->soundInputVolume2Label);
    makeSlidersHandy();
    const CaptureVariant variant{.streamName = "Scope",
                                 .runLoop = &runLoop,
                                 .printsEnqueue = false,
                                 .metersLevel = false,
                                 .folds = false,
                                 .startDiagnostic = nullptr};
    source_ = std::make_unique<InputSource>(
        system, AudioDeviceTable::Variant::Input, variant,
        InputControls{ui_->inputPopup, ui_->soundInputVolume2, ui_->inputStatus},
        [this](std::span<const std::int16_t> interleaved) { capture_.capture(interleaved); });
    source_->setHints([this](Hints& hints) { addHints(hints); });
    connect(source_.get(), &InputSource::calibrationChanged, this, &ScopeController::showReadings);
    makeExportMenu(preferences);
}

ScopeController::~ScopeController() = default;

void ScopeController::awakeFromNib() {
    addRulers();
    ui_->readings->setGroup(2); // the channels
    ui_->mainView->setModel(controls_, capture_);
    source_->GetSoundDevices();
    source_->SetSoundDevices();
    for (const RealSlider* slider :
         {ui_->rangeSlider1, ui_->rangeSlider2, ui_->offsetSlider1, ui_->offsetSlider2, ui_->triggerSlider1,
          ui_->triggerSlider2, ui_->sweepSlider})
        connect(slider, &RealSlider::doubleValueChanged, this, &ScopeController::takeControls);
    for (const QCheckBox* box :
         {ui_->polarity1Button, ui_->polarity2Button, ui_->invert1Button, ui_->invert2Button})
        connect(box, &QCheckBox::toggled, this, &ScopeController::takeControls);
    connect(ui_->steadyPopup, &QComboBox::currentIndexChanged, this, &ScopeController::takeControls);
    connect(ui_->cursorsButton, &QCheckBox::toggled, this, &ScopeController::showCursors);
    connect(ui_->holdButton, &QCheckBox::toggled, this, &ScopeController::hold);
    connect(ui_->singleButton, &QPushButton::toggled, this, &ScopeController::awaitTrigger);
    // What is held has not been heard by another input, and would be read in its unit.
    connect(ui_->inputPopup, &QComboBox::activated, this, [this] { ui_->holdButton->setChecked(false); });
    // Not from within the painting: the panel may want another height.
    connect(ui_->mainView, &ScopeView::painted, this, &ScopeController::showReadings, Qt::QueuedConnection);
    listStoredControls();
    stored_.restore();
    source_->startSound();
}

void ScopeController::makeSlidersHandy() {
    const struct {
        RealSlider* slider;
        QLabel* value;
        ValueNotation notation;
        double first;
        QLabel* name;
    } rows[] = {{ui_->rangeSlider1, ui_->rangeValue1, gainNotation(), kNoRange, ui_->rangeSlider1Label},
                {ui_->rangeSlider2, ui_->rangeValue2, gainNotation(), kNoRange, ui_->rangeSlider2Label},
                {ui_->offsetSlider1, ui_->offsetValue1, plainNotation("px"), 0.0, ui_->offsetSlider1Label},
                {ui_->offsetSlider2, ui_->offsetValue2, plainNotation("px"), 0.0, ui_->offsetSlider2Label},
                {ui_->triggerSlider1, ui_->triggerValue1, plainNotation(), 0.0, ui_->triggerSlider1Label},
                {ui_->triggerSlider2, ui_->triggerValue2, plainNotation(), 0.0, ui_->triggerSlider2Label},
                {ui_->sweepSlider, ui_->sweepValue, sweepNotation(), kNoSweep, ui_->sweepSliderLabel}};
    for (const auto& row : rows) {
        letType(*row.slider, *row.value, row.notation);
        row.slider->setFirstValue(row.first, row.name);
    }
}

void ScopeController::listStoredControls() {
    stored_.add("inputPopup", *ui_->inputPopup);
    stored_.add("SCOPE_range1Text", *ui_->rangeSlider1, storedOr(kNoRange));
    stored_.add("SCOPE_range2Text", *ui_->rangeSlider2, storedOr(kNoRange));
    stored_.add("SCOPE_trigger1Text", *ui_->triggerSlider1);
    stored_.add("SCOPE_trigger2Text", *ui_->triggerSlider2);
    stored_.add("SCOPE_offset1Text", *ui_->offsetSlider1);
    stored_.add("SCOPE_offset2Text", *ui_->offsetSlider2);
    stored_.add("SCOPE_sweepText", *ui_->sweepSlider, storedOr(kNoSweep));
    stored_.add("SCOPE_polarity1Button", *ui_->polarity1Button, isScopeButtonSet);
    stored_.add("SCOPE_polarity2Button", *ui_->polarity2Button, isScopeButtonSet);
    stored_.add("SCOPE_invert1Button", *ui_->invert1Button, isScopeButtonSet);
    stored_.add("SCOPE_invert2Button", *ui_->invert2Button, isScopeButtonSet);
    stored_.add("SCOPE_steadyPopup", *ui_->steadyPopup);
    stored_.add("SCOPE_cursorsButton", *ui_->cursorsButton, isScopeButtonSet);
    stored_.addVolume("SCOPE_soundInputVolume", *ui_->soundInputVolume2);
}

void ScopeController::takeControls() {
    for (const std::int32_t ch : {0, 1}) {
        const auto i = static_cast<std::size_t>(ch);
        controls_.range[i] = getRange(ch);
        controls_.offset[i] = getOffset(ch);
        controls_.trigger[i] = getTrigger(ch);
        controls_.triggerPolarity[i] = getTriggerPolarity(ch);
        controls_.invert[i] = getInvert(ch);
    }
    controls_.sweep = getSweep();
    controls_.steady = ui_->steadyPopup->currentIndex();
    showValues();
    if (capture_.holds()) // there will be no next picture to show it
        ui_->mainView->redisplay();
}

void ScopeController::addHints(Hints& hints) const {
    const ScopeTrace& trace = ui_->mainView->trace();
    const SteadyState steady = trace.steadyState();
    bool isUsual = steady == SteadyState::Centred;
    if (steady == SteadyState::Off) {
        const auto isWhole = [&](std::int32_t ch) {
            const ScopeFindings& findings = trace.findings(ch);
            return !findings.held && findings.signalLength >= displayBuflength(controls_.sweep);
        };
        isUsual = isWhole(0) && isWhole(1);
    }
    hints.push_back({isUsual ? Hint::Urgency::Usual : Hint::Urgency::Progress,
                     steady == SteadyState::Off ? searchHint(0) + " · " + searchHint(1) : steadyHint()});
    if (ui_->singleButton->isChecked())
        hints.push_back({Hint::Urgency::News, "Single: waiting for a block in which the level is crossed"});
    else if (capture_.holds())
        hints.push_back(
            {Hint::Urgency::News,
             QString("Held, %1 ago").arg(waitingTime(static_cast<double>(held_.elapsed()) * kMillisecond))});
}

/// What the search for a channel's trigger has found.
QString ScopeController::searchHint(std::int32_t ch) const {
    const ScopeFindings& findings = ui_->mainView->trace().findings(ch);
    QString state = "triggered";
    if (findings.held)
        state = ch == 0 ? "held: the level is not crossed"
                        : "held: the level is not crossed behind channel 1's start";
    if (findings.signalLength < displayBuflength(controls_.sweep))
        state += QString(", its signal ends after %1 ms")
                     .arg(findings.signalLength * 1000.0 / kSampleRate, 0, 'f', 1);
    return QString("Channel %1 %2").arg(ch + 1).arg(state);
}

QString ScopeController::steadyHint() const {
    const QString channel = QString("channel %1").arg(controls_.steady);
    switch (ui_->mainView->trace().steadyState()) {
    case SteadyState::Held:
        return QString("Held: the level of %1 is not crossed").arg(channel);
    case SteadyState::Cut:
        return QString("The only crossings of %1 lie near the block's ends: a shorter time base shows more")
            .arg(channel);
    default:
        return QString("Both channels around a crossing of %1").arg(channel);
    }
}

void ScopeController::addRulers() {
    levelRulers_ = {new Ruler(Ruler::Side::Left, "Level of channel 1", "%"),
                    new Ruler(Ruler::Side::Right, "Level of channel 2", "%")};
    timeRuler_ = new Ruler(Ruler::Side::Bottom, "Time", "ms");
    ui_->plot->addWidget(levelRulers_[0], 0, 0);
    ui_->plot->addWidget(levelRulers_[1], 0, 2);
    ui_->plot->addWidget(timeRuler_, 1, 1);
    ui_->plot->setColumnStretch(1, 1);
    ui_->plot->setRowStretch(0, 1);
}

void ScopeController::makeExportMenu(Preferences& preferences) {
    const auto missing = [this] {
        return capture_.blocks() == 0 ? QString("There is no block yet to export") : QString();
    };
    const auto table = [this] {
        return scopeTable(origin(), wordedSettings(), ui_->mainView->trace(), capture_,
                          source_->calibration());
    };
    auto* const menu = new ExportMenu(
        *ui_->exportButton, preferences,
        {missing, [this] { return picture(); }, [this] { return ui_->mainView->size(); }, table});
    connect(menu, &ExportMenu::said, source_.get(), &InputSource::showNotice);
}

MeasurementOrigin ScopeController::origin() const {
    return source_->origin(lastBlock_.isValid() ? lastBlock_.elapsed() : 0);
}

std::vector<Setting> ScopeController::wordedSettings() const {
    std::vector<Setting> words = worded(controls_, source_->calibration());
    for (const std::int32_t ch : {0, 1}) {
        const std::int64_t blocks = capture_.blocks() - ui_->mainView->trace().shown(ch).block;
        if (blocks > 0)
            words.push_back({"Trace " + std::to_string(ch + 1),
                             "held by the trigger, of " +
                                 plainNumber(static_cast<double>(blocks) * kScopeBlock / kSampleRate) +
                                 " s before the readings and the time"});
    }
    words.push_back({"Input volume", source_->volumeText().toStdString()});
    return words;
}

ReportPicture ScopeController::picture() {
    const ScopeView& view = *ui_->mainView;
    const ReportContent content{.title = {},
                                .origin = origin(),
                                .settings = wordedSettings(),
                                .readings = ui_->readings->readings(),
                                .group = 2};
    return scopeReport(content,
                       {.trace = view.trace(),
                        .offsets = controls_.offset,
                        .offsetHeight = static_cast<double>(view.height()),
                        .calibration = source_->calibration(),
                        .cursors = view.areCursorsShown() ? std::optional(view.cursors()) : std::nullopt});
}

/// Called for each new block.
void ScopeController::takeBlock() {
    if (ui_->singleButton->isChecked() && isTriggered()) {
        ui_->singleButton->setChecked(false);
        ui_->holdButton->setChecked(true);
    }
    lastBlock_.start();
    ui_->mainView->redisplay();
}

/// Whether the block has a trigger, of either channel or of the steady one's.
bool ScopeController::isTriggered() const {
    for (const std::int32_t ch : {0, 1}) {
        const auto i = static_cast<std::size_t>(ch);
        const TriggerCondition condition{controls_.trigger[i], controls_.triggerPolarity[i]};
        const ScopeSamples samples = capture_.display(ch);
        if (controls_.steady == ch + 1 &&
            findSteadyCrossing(samples.first<kScopeSignal>(), condition, 0.0, kScopeSignal - 1.0))
            return true;
        if (controls_.steady == 0 &&
            findTrigger(samples, condition, displayBuflength(controls_.sweep), 0).found)
            return true;
    }
    return false;
}

/// The view has a place among the controls only while it takes keys.
void ScopeController::showCursors(bool areShown) {
    ui_->mainView->setCursorsShown(areShown);
    if (areShown)
        QWidget::setTabOrder(ui_->cursorsButton, ui_->mainView);
}

void ScopeController::hold(bool holds) {
    capture_.hold(holds);
    if (holds) {
        ui_->singleButton->setChecked(false);
        held_.start();
    }
}

void ScopeController::awaitTrigger(bool awaits) {
    if (awaits)
        ui_->holdButton->setChecked(false);
}

/// The picture on the screen has changed. A window that is not seen does not paint, and so does not read.
void ScopeController::showReadings() {
    showRulers();
    const bool hasBlock = capture_.blocks() > 0;
    if (readBlock_ != capture_.blocks()) {
        readBlock_ = capture_.blocks();
        for (const std::int32_t ch : {0, 1})
            readings_.channels[static_cast<std::size_t>(ch)] = readSignal(capture_.raw(ch), kSampleRate);
        readings_.delay = delay_.read(capture_.raw(0), capture_.raw(1));
    }
    std::vector<Reading> worded = wordedReadings(hasBlock ? &readings_ : nullptr, source_->calibration());
    if (ui_->mainView->areCursorsShown()) {
        const std::vector<Reading> cursors = wordedCursors({cursor(0), cursor(1)}, source_->calibration());
        worded.insert(worded.end(), cursors.begin(), cursors.end());
    }
    ui_->readings->show(std::move(worded));
}

ScopeCursor ScopeController::cursor(std::size_t index) const {
    const ScopeView& view = *ui_->mainView;
    const double x = view.cursorPlace(index);
    return {view.trace().timeAxis().valueAt(x / view.width()),
            {view.trace().levelAt(0, x), view.trace().levelAt(1, x)}};
}

void ScopeController::showRulers() {
    const ScopeView& view = *ui_->mainView;
    timeRuler_->setAxis(view.trace().timeAxis());
    std::vector<RulerMark> marks;
    for (std::size_t i = 0; view.areCursorsShown() && i < kScopeCursorNames.size(); ++i)
        marks.push_back({cursor(i).milliseconds, kScopeCursorNames[i], kScopeCursorColours[i]});
    timeRuler_->setMarks(std::move(marks));
    for (const std::int32_t ch : {0, 1}) {
        const auto i = static_cast<std::size_t>(ch);
        const ScopeLevelAxis level =
            scopeLevelAxis(view.trace().scale(ch), view.height(), source_->calibration());
        levelRulers_[i]->setUnit(QString::fromStdString(level.unit));
        levelRulers_[i]->setAxis(level.levels.axis);
        levelRulers_[i]->setMargins(level.levels.below, level.levels.over);
    }
}

/// Says beside each slider what its position means.
void ScopeController::showValues() {
    const auto gain = [](double range) { return QString("× %1").arg(range, 0, 'f', 1); };
    const auto points = [](double offset) { return QString("%1 px").arg(offset, 0, 'f', 0); };
    const auto level = [](double trigger) { return QString::number(trigger, 'f', 0); };
    ui_->rangeValue1->setText(gain(controls_.range[0]));
    ui_->rangeValue2->setText(gain(controls_.range[1]));
    ui_->offsetValue1->setText(points(controls_.offset[0]));
    ui_->offsetValue2->setText(points(controls_.offset[1]));
    ui_->triggerValue1->setText(level(controls_.trigger[0]));
    ui_->triggerValue2->setText(level(controls_.trigger[1]));
    const std::int32_t samples = displayBuflength(controls_.sweep);
    const double milliseconds = samples * 1000.0 / StreamDescription().sampleRate;
    ui_->sweepValue->setText(
        QString("%1 samples, %2 ms").arg(samples).arg(milliseconds, 0, 'f', milliseconds < 10 ? 2 : 1));
}

double ScopeController::getRange(std::int32_t ch) const {
    return scopeGain((ch == 0 ? ui_->rangeSlider1 : ui_->rangeSlider2)->doubleValue());
}

double ScopeController::getOffset(std::int32_t ch) const {
    return (ch == 0 ? ui_->offsetSlider1 : ui_->offsetSlider2)->doubleValue();
}

double ScopeController::getTrigger(std::int32_t ch) const {
    return (ch == 0 ? ui_->triggerSlider1 : ui_->triggerSlider2)->doubleValue();
}

bool ScopeController::getTriggerPolarity(std::int32_t ch) const {
    return (ch == 0 ? ui_->polarity1Button : ui_->polarity2Button)->isChecked();
}

bool ScopeController::getInvert(std::int32_t ch) const {
    return (ch == 0 ? ui_->invert1Button : ui_->invert2Button)->isChecked();
}

double ScopeController::getSweep() const {
    return scopeSweep(ui_->sweepSlider->doubleValue());
}

} // namespace sonotrace
