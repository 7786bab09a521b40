#include "generator/GeneratorPanel.h"

#include "base/Numbers.h"
#include "base/SystemLog.h"
#include "generator/OutputLevels.h"
#include "generator/Waveforms.h"
#include "measure/CleanFrequency.h"
#include "widgets/Introduce.h"
#include "widgets/NumberField.h"
#include "widgets/NumberText.h"
#include "widgets/PopUp.h"
#include "widgets/RealSlider.h"
#include "widgets/TypedValue.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr int kFirstRowY = 40;
constexpr int kRowHeight = 30;
constexpr int kCaptionY = 20;
constexpr int kPanelWidth = 750;

constexpr int kEnabledTag = 100;
constexpr int kWaveformTag = 200;
constexpr int kFrequencyTag = 300;
constexpr int kPhaseTag = 400;
constexpr int kVolumeLeftTag = 500;
constexpr int kVolumeRightTag = 600;

// What the font must fit into; where it does not, the panel grows with it.
constexpr const char* kFrequencyCaption = "Frequency, Hz";
constexpr double kFrequencyRoom = 96.0;
constexpr double kLineRoom = 20.0;

int rowY(int slot) {
    return kFirstRowY + kRowHeight * slot;
}

QString fixedPoint(double value) {
    return QString::asprintf("%-8.2f", value);
}

QString percent(double volume) {
    return QString::number(truncateToInt32(volume * 100.0));
}

/// Marks a field whose text says something else than what plays, a number with another unit included.
void sayWhatPlays(NumberField& field, double plays, const QString& unit) {
    const auto typed = numberAndUnit(field.text());
    const bool isTrue =
        typed && typed->number == plays && (typed->unit.isEmpty() || typed->unit == unit.toLower());
    field.setLook(isTrue ? NumberField::Look::Usual : NumberField::Look::Refused,
                  QString("plays %1 %2").arg(textFromNumber(plays), unit));
}

/// Introduces a control of row `slot` and tags it.
void introduceInRow(QWidget& control, const char* name, int slot, int tag, const QString& title,
                    const QString& tip) {
    introduce(control, name + QString::number(slot), QString("Generator %1 %2").arg(slot + 1).arg(title),
              tip);
    if (tag != 0)
        control.setProperty("tag", tag);
}

} // namespace

GeneratorPanel::GeneratorPanel(GeneratorBank& bank, const OutputLevels& levels,
                               std::function<int()> blockSize)
    : bank_(bank),
      levels_(levels),
      blockSize_(std::move(blockSize)),
      scale_(std::max({1.0, fontMetrics().height() / kLineRoom,
                       fontMetrics().horizontalAdvance(kFrequencyCaption) / kFrequencyRoom})) {
    setFixedSize(place(0, 0, kPanelWidth, rowY(kGeneratorCount)).size());
}

QRect GeneratorPanel::place(int x, int y, int width, int height) const {
    const auto scaled = [this](int length) { return static_cast<int>(std::lround(length * scale_)); };
    return {scaled(x), scaled(y), scaled(width), scaled(height)};
}

void GeneratorPanel::BuildControls() {
    for (int slot = 0; slot < kGeneratorCount; ++slot) {
        const GeneratorSettings values = bank_.slots[static_cast<std::size_t>(slot)].load();
        systemLog("%d %d %d %g %g %g %g", slot, values.enabled, values.waveform,
                  static_cast<double>(static_cast<float>(values.frequency)),
                  static_cast<double>(static_cast<float>(values.phase)),
                  static_cast<double>(static_cast<float>(values.volumeLeft)),
                  static_cast<double>(static_cast<float>(values.volumeRight)));
    }
    for (int slot = 0; slot < kGeneratorCount; ++slot)
        buildRow(slot, bank_.slots[static_cast<std::size_t>(slot)].load());
    placeCaptions();
    systemLog("BuildControls");
}

void GeneratorPanel::buildRow(int slot, const GeneratorSettings& settings) {
    const int y = rowY(slot);
    Row& controls = row(slot);
    const ValueNotation notation = levels_.notation(bank_.slots[static_cast<std::size_t>(slot)].enabled);

    controls.enabled = new QCheckBox(this);
    controls.enabled->setGeometry(place(14, y, 40, 20));
    controls.enabled->setChecked(settings.enabled > 0);
    introduceInRow(
        *controls.enabled, "enabled", slot, kEnabledTag + slot, "on",
        "Switches the generator on. All generators that are on share the full scale between them.");

    controls.waveform = new QComboBox(this);
    controls.waveform->setGeometry(place(64, y, 110, 25));
    setItems(*controls.waveform, waveformTitles());
    selectItem(*controls.waveform, settings.waveform);
    introduceInRow(*controls.waveform, "waveform", slot, kWaveformTag + slot, "waveform",
                   "Shape of the signal");

    controls.frequency = new NumberField(this);
    controls.frequency->setGeometry(place(200, y, 85, 20));
    controls.frequency->setAlignment(Qt::AlignLeft);
    controls.frequency->setStepLimits(kLeastFrequency, kMostFrequency);
    controls.frequency->setText(fixedPoint(settings.frequency));
    introduceInRow(
        *controls.frequency, "frequency", slot, kFrequencyTag + slot, "frequency",
        "Frequency in Hz, 0.1 to 22000.\nA sine of full volume is clean to 104 dB below it at multiples of "
        "4.41 Hz, to about 80 dB elsewhere.\nCtrl+N goes to the nearest multiple, Ctrl+Shift+N to the "
        "nearest that fits the spectrum analyzer's block.");
    addFrequencyActions(*controls.frequency);

    controls.phase = new NumberField(this);
    controls.phase->setGeometry(place(300, y, 85, 20));
    controls.phase->setAlignment(Qt::AlignLeft);
    controls.phase->setStepLimits(-kMostPhase, kMostPhase);
    controls.phase->setText(fixedPoint(settings.phase));
    introduceInRow(*controls.phase, "phase", slot, kPhaseTag + slot, "phase",
                   "Phase in degrees, -360 to 360");

    controls.volumeLeft =
        volumeSlider(slot, "volumeLeft", kVolumeLeftTag + slot, 400, "left", settings.volumeLeft);
    controls.readoutLeft = readout(slot, "readoutLeft", 525, "left", settings.volumeLeft);
    letType(*controls.volumeLeft, *controls.readoutLeft, notation);
    controls.volumeRight =
        volumeSlider(slot, "volumeRight", kVolumeRightTag + slot, 570, "right", settings.volumeRight);
    controls.readoutRight = readout(slot, "readoutRight", 695, "right", settings.volumeRight);
    letType(*controls.volumeRight, *controls.readoutRight, notation);

    auto* number = new QLabel(QString::number(slot + 1), this);
    number->setObjectName("number" + QString::number(slot));
    number->setGeometry(place(36, y, 26, 20));
    number->setAttribute(Qt::WA_TransparentForMouseEvents); // it lies on the box
}

/// In the field's context menu, and with their keys while it has the focus.
void GeneratorPanel::addFrequencyActions(NumberField& field) const {
    const auto add = [&field](const char* name, const QString& title, const QKeySequence& key, auto nearest) {
        auto* action = new QAction(title, &field);
        action->setObjectName(name);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        field.addAction(action);
        connect(action, &QAction::triggered, &field, [&field, nearest] {
            field.typeValue(nearest(std::clamp(field.doubleValue(), kLeastFrequency, kMostFrequency)));
        });
    };
    add("nearestClean", "Nearest Clean &Frequency", QKeySequence(Qt::CTRL | Qt::Key_N),
        [](double frequency) { return nearestCleanFrequency(frequency, kMostFrequency); });
    add("nearestCleanInBlock", "Nearest Clean Frequency That Fits the Analyzer's &Block",
        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N), [this](double frequency) {
            return nearestCleanFrequencyInBlock(frequency, blockSize_(), kMostFrequency);
        });
}

RealSlider* GeneratorPanel::volumeSlider(int slot, const char* name, int tag, int x, const QString& channel,
                                         double volume) {
    auto* slider = new RealSlider(this);
    slider->setGeometry(place(x, rowY(slot), 125, 25));
    slider->setDoubleValue(volume);
    slider->setFirstValue(1.0);
    introduceInRow(*slider, name, slot, tag, QString("%1 volume").arg(channel),
                   QString("Volume of the %1 channel, 0 to 100 % of the generator's share").arg(channel));
    connect(slider, &RealSlider::valueEdited, this, [this, slider] { volSliderEvent(*slider); });
    return slider;
}

QLabel* GeneratorPanel::readout(int slot, const char* name, int x, const QString& channel, double volume) {
    auto* label = new QLabel(percent(volume), this);
    label->setGeometry(place(x, rowY(slot) + 3, 40, 20));
    introduceInRow(*label, name, slot, 0, QString("%1 volume in per cent").arg(channel),
                   QString("Volume of the %1 channel in per cent").arg(channel));
    return label;
}

void GeneratorPanel::placeCaptions() {
    const struct {
        const char* name;
        QString text;
        int x;
    } captions[] = {{"labelEnabled", "On", 14},
                    {"labelType", "Waveform", 64},
                    {"labelFreq", kFrequencyCaption, 200},
                    {"labelPhase", "Phase, °", 300},
                    {"labelLeft", "Left volume, %", 400},
                    {"labelRight", "Right volume, %", 570}};
    for (const auto& caption : captions) {
        auto* label = new QLabel(caption.text, this);
        label->setObjectName(caption.name);
        label->adjustSize();
        label->move(place(caption.x, kCaptionY, 0, 0).topLeft());
    }
}

void GeneratorPanel::volSliderEvent(const RealSlider& sender) {
    const int tag = sender.property("tag").toInt();
    systemLog("volSliderEvent %d", tag);
    const bool isRight = tag >= kVolumeRightTag;
    const int slot = tag - (isRight ? kVolumeRightTag : kVolumeLeftTag);
    GeneratorSlot& values = bank_.slots[static_cast<std::size_t>(slot)];
    const double volume = sender.doubleValue();
    (isRight ? values.volumeRight : values.volumeLeft).store(volume, std::memory_order_relaxed);
    (isRight ? row(slot).readoutRight : row(slot).readoutLeft)->setText(percent(volume));
}

void GeneratorPanel::poll() {
    for (int slot = 0; slot < kGeneratorCount; ++slot) {
        const Row& controls = row(slot);
        GeneratorSlot& values = bank_.slots[static_cast<std::size_t>(slot)];
        values.enabled.store(controls.enabled->isChecked() ? 1 : 0, std::memory_order_relaxed);
        values.waveform.store(controls.waveform->currentIndex(), std::memory_order_relaxed);
        const double frequency =
            std::clamp(controls.frequency->doubleValue(), kLeastFrequency, kMostFrequency);
        values.frequency.store(frequency, std::memory_order_relaxed);
        sayWhatPlays(*controls.frequency, frequency, "Hz");
        const double phase = std::clamp(controls.phase->doubleValue(), -kMostPhase, kMostPhase);
        values.phase.store(phase, std::memory_order_relaxed);
        sayWhatPlays(*controls.phase, phase, "°");
    }
}

void GeneratorPanel::switchAllOff() {
    for (const Row& controls : rows_)
        controls.enabled->setChecked(false);
}

void GeneratorPanel::setSlot(int slot, const GeneratorSettings& settings) {
    const Row& controls = row(slot);
    controls.frequency->setDoubleValue(settings.frequency);
    controls.phase->setDoubleValue(settings.phase);
    controls.volumeLeft->setDoubleValue(settings.volumeLeft);
    controls.volumeRight->setDoubleValue(settings.volumeRight);
    selectItem(*controls.waveform, settings.waveform);
    controls.enabled->setChecked(settings.enabled > 0);
    bank_.slots[static_cast<std::size_t>(slot)].store(settings);
    controls.readoutLeft->setText(percent(settings.volumeLeft));
    controls.readoutRight->setText(percent(settings.volumeRight));
}

GeneratorSettings GeneratorPanel::slotSettings(int slot) const {
    GeneratorSettings settings = bank_.slots[static_cast<std::size_t>(slot)].load();
    settings.enabled = row(slot).enabled->isChecked() ? 1 : 0;
    return settings;
}

} // namespace sonotrace
