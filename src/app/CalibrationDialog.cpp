#include "app/CalibrationDialog.h"

#include "audio/AudioDeviceTable.h"
#include "widgets/FilePanels.h"
#include "widgets/Introduce.h"
#include "widgets/NumberField.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QVBoxLayout>

#include <limits>

namespace sonotrace {

namespace {

using Side = Calibrations::Side;

constexpr QSize kFirstSize(620, 460);
constexpr int kNumberWidth = 100;
constexpr int kBesideGroups = 60; // margins and the scroll bar

QString fromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

NumberField* numberField(const QString& name, const QString& title, const QString& tip) {
    auto* field = new NumberField;
    introduce(*field, name, title, tip);
    constexpr double kAny = std::numeric_limits<double>::infinity();
    field->setStepLimits(-kAny, kAny);
    field->setMaximumWidth(kNumberWidth);
    return field;
}

/// A device's number in six digits: nobody measures more.
void showNumber(NumberField& field, double value) {
    field.setDoubleValue(QString::number(value, 'g', 6).toDouble());
}

} // namespace

CalibrationDialog::CalibrationDialog(Calibrations& calibrations, Preferences& preferences, QWidget* parent)
    : QDialog(parent), calibrations_(calibrations), preferences_(preferences) {
    setObjectName("CalibrationDialog");
    setWindowTitle("Sonotrace Calibration");
    auto* column = new QVBoxLayout(this);
    auto* text =
        new QLabel("Full scale is the RMS value of the largest sine that a device takes or gives. It "
                   "holds as long as nobody turns the device's volume.");
    text->setWordWrap(true);
    column->addWidget(text);
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    auto* devices = new QWidget;
    groups_ = new QVBoxLayout(devices);
    area->setWidget(devices);
    column->addWidget(area, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    introduce(*buttons->button(QDialogButtonBox::Close), "closeCalibration", "Close", "Closes the window");
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false); // Enter is for the fields
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
    new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this, this, &QWidget::close);
    resize(kFirstSize);
}

/// What is still being typed counts as well.
void CalibrationDialog::done(int result) {
    if (auto* field = qobject_cast<NumberField*>(focusWidget()))
        Q_EMIT field->editingFinished();
    QDialog::done(result);
}

void CalibrationDialog::showDevices(const AudioDeviceTable& devices) {
    while (QLayoutItem* item = groups_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const auto add = [&](Side side, std::size_t i, std::int32_t k) {
        const auto device = static_cast<std::size_t>(k);
        const std::string uid = devices.uid(device);
        if (uid.empty()) // could not be told from others at the next start
            return;
        const QString number = QString::number(i);
        const QString name = QString::fromStdString(devices.deviceNames[device]).replace(u'&', "&&");
        auto* group = new QGroupBox(QString(side == Side::Input ? "Input: %1" : "Output: %1").arg(name));
        auto* column = new QVBoxLayout(group);
        addLevels(*column, side, number, uid);
        if (side == Side::Input)
            addCorrection(*column, number, uid);
        groups_->addWidget(group);
    };
    for (std::size_t i = 0; i < devices.inputDeviceMap.size(); ++i)
        add(Side::Input, i, devices.inputDeviceMap[i]);
    for (std::size_t i = 0; i < devices.outputDeviceMap.size(); ++i)
        add(Side::Output, i, devices.outputDeviceMap[i]);
    groups_->addStretch(1);
    resize(size().expandedTo({groups_->sizeHint().width() + kBesideGroups, 0})); // large fonts need more
}

void CalibrationDialog::addLevels(QVBoxLayout& column, Side side, const QString& number,
                                  const std::string& uid) {
    const bool isInput = side == Side::Input;
    const auto name = [&](const char* what) {
        return (isInput ? "input" : "output") + QString(what) + number;
    };
    auto* fullScale = numberField(name("FullScale"), "Full scale",
                                  "RMS value of a full-scale sine, in the unit beside. It is kept for the "
                                  "device, and holds as long as nobody turns its volume.");
    auto* unit = new QComboBox;
    introduce(*unit, name("Unit"), "Unit of full scale", "The unit in which levels at this device are given");
    for (const LevelUnit each : kLevelUnits)
        unit->addItem(each == LevelUnit::None ? "not calibrated" : fromView(unitName(each)));
    auto* reading = numberField(name("Reading"), "Measured level, dBFS",
                                isInput ? "What the input reads while the known level is at it, in dBFS"
                                        : "The level of what plays while it is measured, in dBFS");
    auto* known = numberField(name("Known"), "Known level", "The level in the unit of full scale");
    auto* knownUnit = new QLabel;
    auto* compute = new QPushButton("Compute");
    introduce(*compute, name("Compute"), "Compute full scale",
              "Computes full scale from a level that is known, as of a calibrator or a voltmeter");
    compute->setAutoDefault(false);

    auto* levels = new QHBoxLayout;
    levels->addWidget(new QLabel("Full scale is"));
    levels->addWidget(fullScale);
    levels->addWidget(unit);
    levels->addStretch(1);
    column.addLayout(levels);
    auto* measured = new QHBoxLayout;
    measured->addWidget(new QLabel(isInput ? "A reading of" : "What plays at"));
    measured->addWidget(reading);
    measured->addWidget(new QLabel("dBFS is"));
    measured->addWidget(known);
    measured->addWidget(knownUnit);
    measured->addStretch(1);
    measured->addWidget(compute);
    column.addLayout(measured);

    const auto show = [=](const Calibration& calibration) {
        const bool hasUnit = linearUnit(calibration.unit) != LevelUnit::None;
        unit->setCurrentIndex(hasUnit ? static_cast<int>(calibration.unit) : 0);
        if (hasUnit)
            showNumber(*fullScale, calibration.fullScale);
        knownUnit->setText(fromView(unitName(calibration.unit)));
        for (QWidget* control : {static_cast<QWidget*>(fullScale), static_cast<QWidget*>(reading),
                                 static_cast<QWidget*>(known), static_cast<QWidget*>(compute)})
            control->setEnabled(hasUnit);
        const QString trouble = fromView(calibrationTrouble(calibration));
        fullScale->setLook(trouble.isEmpty() ? NumberField::Look::Usual : NumberField::Look::Refused,
                           "Not calibrated: " + trouble);
    };
    const auto keep = [=, this](const Calibration& calibration) {
        calibrations_.setCalibration(side, uid, calibration);
        show(calibration);
    };
    const auto kept = [=, this] { return calibrations_.calibration(side, uid); };
    show(kept());
    connect(fullScale, &QLineEdit::editingFinished, this, [=] {
        keep({kept().unit, fullScale->doubleValue()});
    });
    connect(unit, &QComboBox::activated, this, [=](int item) { keep(inUnit(kept(), kLevelUnits[item])); });
    connect(compute, &QPushButton::clicked, this, [=] {
        if (!reading->text().isEmpty() && !known->text().isEmpty())
            keep(calibrationFromLevel(kept().unit, reading->doubleValue(), known->doubleValue()));
    });
}

void CalibrationDialog::addCorrection(QVBoxLayout& column, const QString& number, const std::string& uid) {
    auto* text = new QLabel;
    introduce(*text, "correction" + number, "Microphone correction", "The file that corrects the readings");
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    auto* choose = new QPushButton("Choose…");
    introduce(*choose, "chooseCorrection" + number, "Choose a correction file",
              "Chooses the microphone's correction file: lines of a frequency in Hz and the response in dB");
    auto* clear = new QPushButton("Clear");
    introduce(*clear, "clearCorrection" + number, "Clear the correction", "Uses no correction file any more");
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel("Microphone:"));
    row->addWidget(text, 1);
    for (QPushButton* button : {choose, clear}) {
        button->setAutoDefault(false);
        row->addWidget(button);
    }
    column.addLayout(row);

    const auto show = [=, this] {
        const Calibrations::Correction& correction = calibrations_.correction(uid);
        text->setText(describeCorrection(correction));
        clear->setEnabled(!correction.path.isEmpty());
    };
    show();
    // Not by who asks for a file: meanwhile a device may come back, and the devices be shown anew.
    connect(&calibrations_, &Calibrations::changed, text, show);
    connect(choose, &QPushButton::clicked, this, [=, this] {
        if (const auto path =
                askForFileToOpen(this, preferences_, kCorrections, "Correction file of the microphone"))
            calibrations_.setCorrection(uid, *path);
    });
    connect(clear, &QPushButton::clicked, this, [=, this] { calibrations_.setCorrection(uid, QString()); });
}

} // namespace sonotrace
