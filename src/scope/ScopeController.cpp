#include "scope/ScopeController.h"

#include "base/SampleRate.h"
#include "ui_ScopeWindow.h"
#include "widgets/InputHints.h"
#include "widgets/NumberText.h"
#include "widgets/RealSlider.h"
#include "widgets/TypedValue.h"

#include <cmath>

namespace sonotrace {

namespace {

// What the sliders are set to when nothing is stored: far outside their ranges, so that they stand at their
// ends.
constexpr float kNoRange = 50000.0F;
constexpr float kNoSweep = 600.0F;

/// What is typed is still the same number of samples, truncated, after it has been kept in single precision.
constexpr double kSampleMargin = 0.01;

/// A slider left at exactly 0 counts as one that was never stored.
auto storedOr(float fallback) {
    return [fallback](float stored) { return stored == 0.0F ? fallback : stored; };
}

ValueNotation gainNotation() {
    const auto write = [](double slider) { return QString::number(scopeGain(slider)); };
    const auto read = [](const QString& text) -> std::optional<double> {
        const auto gain = numberAndUnit(QString(text).remove(u'×'));
        if (!gain || !gain->unit.isEmpty() || gain->number <= 0.0)
            return std::nullopt;
        return -std::log10(gain->number);
    };
    return {write, read};
}

ValueNotation sweepNotation() {
    const auto write = [](double slider) {
        return QString("%1 samples").arg(displayBuflength(scopeSweep(slider)));
    };
    const auto read = [](const QString& text) -> std::optional<double> {
        const auto length = numberAndUnit(text);
        if (!length || length->number <= 0.0)
            return std::nullopt;
        const bool isTime = length->unit == "ms";
        if (!isTime && !length->unit.isEmpty() && length->unit != "samples")
            return std::nullopt;
        const double samples = isTime ? std::round(length->number * kSampleRate / 1000.0) : length->number;
        return 5.0 - std::log10(samples + kSampleMargin);
    };
    return {write, read};
}

} // namespace

ScopeController::ScopeController(SoundSystem& system, RunLoop& runLoop, Preferences& preferences)
    : ToolController(preferences, "SCOPE_WINDOW_FRAME"),
      ui_(std::make_unique<Ui::ScopeWindow>()),
      capture_(controls_, [this] { ui_->mainView->update(); }) {
    ui_->setupUi(&window_);
    levelRows(*ui_->inputPopup, {ui_->inputStrip, ui_->timeStrip});
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
}

ScopeController::~ScopeController() = default;

void ScopeController::awakeFromNib() {
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
    showValues();
}

void ScopeController::addHints(Hints& hints) const {
    QStringList states;
    auto urgency = Hint::Urgency::Usual;
    const std::int32_t length = displayBuflength(controls_.sweep);
    for (const std::int32_t ch : {0, 1}) {
        const ScopeFindings& findings = ui_->mainView->findings(ch);
        QString state = "triggered";
        if (findings.held)
            state = ch == 0 ? "held: the level is not crossed"
                            : "held: the level is not crossed behind channel 1's start";
        if (findings.signalLength < length)
            state += QString(", its signal ends after %1 ms")
                         .arg(findings.signalLength * 1000.0 / kSampleRate, 0, 'f', 1);
        if (findings.held || findings.signalLength < length)
            urgency = Hint::Urgency::Progress;
        states << QString("Channel %1 %2").arg(ch + 1).arg(state);
    }
    hints.push_back({urgency, states.join(" · ")});
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
