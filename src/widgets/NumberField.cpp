#include "widgets/NumberField.h"

#include "base/Numbers.h"
#include "widgets/NumberText.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>
#include <cmath>
#include <limits>

namespace sonotrace {

namespace {

const QColor kWarning(0xe0, 0x8a, 0x00);
constexpr double kTint = 0.35;
constexpr double kFading = 0.4;

/// The multiple next to `value` of a tenth of its decade, 1 at least, or of `coarseness` times that.
double nextStep(double value, bool up, double coarseness) {
    if (!std::isfinite(value))
        return value;
    const double magnitude = std::abs(value);
    const bool grows = up == (value >= 0.0);
    double step = 1.0;
    // Down from 100 is 99, although up from there is 110.
    while (grows ? step * 100.0 <= magnitude : step * 100.0 < magnitude)
        step *= 10.0;
    step *= coarseness;
    return (up ? std::floor(value / step) + 1.0 : std::ceil(value / step) - 1.0) * step;
}

QColor mix(const QColor& under, const QColor& over, double share) {
    const auto part = [share](float a, float b) { return static_cast<float>(a + (b - a) * share); };
    return QColor::fromRgbF(part(under.redF(), over.redF()), part(under.greenF(), over.greenF()),
                            part(under.blueF(), over.blueF()));
}

} // namespace

NumberField::NumberField(QWidget* parent)
    : QLineEdit(parent), mostStep_(std::numeric_limits<double>::infinity()) {
    setMaxLength(400); // the longest double in plain notation is shorter; a pasted book is not a number
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    connect(this, &QLineEdit::editingFinished, this, &NumberField::writeOutThousands);
}

double NumberField::doubleValue() const {
    return numberFromText(text());
}

std::int32_t NumberField::integerValue() const {
    return truncateToInt32(doubleValue());
}

void NumberField::setDoubleValue(double value) {
    setText(textFromNumber(value));
}

void NumberField::setFloatValue(float value) {
    setText(textFromNumber(value));
}

void NumberField::setStepLimits(double least, double most) {
    leastStep_ = least;
    mostStep_ = most;
}

void NumberField::setLook(Look look, const QString& note) {
    if (look_ == Look::Usual) {
        if (look == Look::Usual)
            return;
        usualTip_ = toolTip();
    }
    if (look_ != look) {
        look_ = look;
        showLook();
    }
    const QString tip = look == Look::Usual ? usualTip_ : note + '\n' + usualTip_;
    if (tip != toolTip()) {
        setToolTip(tip);
        setAccessibleDescription(tip);
    }
}

void NumberField::showLook() {
    const QPalette usual = QApplication::palette(this);
    const QColor ground = usual.color(QPalette::Base);
    QPalette colours;
    if (look_ == Look::Refused)
        colours.setColor(QPalette::Base, mix(ground, kWarning, kTint));
    if (look_ == Look::Unused) {
        colours.setColor(QPalette::Base, usual.color(QPalette::Window));
        colours.setColor(QPalette::Text, mix(usual.color(QPalette::Text), ground, kFading));
    }
    setPalette(colours);
}

void NumberField::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && look_ != Look::Usual)
        showLook(); // the desktop may have gone dark
}

void NumberField::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (!actions().isEmpty())
        menu->addSeparator();
    menu->addActions(actions());
    menu->popup(event->globalPos());
}

QSize NumberField::minimumSizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    // The field's own hint is a single letter, the widest.
    return QLineEdit::minimumSizeHint() + QSize(metrics.horizontalAdvance("00000") - metrics.maxWidth(), 0);
}

void NumberField::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const bool isPage = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (key == Qt::Key_Return || key == Qt::Key_Enter)
        writeOutThousands(); // before anybody is told
    if (isReadOnly() || !(isPage || key == Qt::Key_Up || key == Qt::Key_Down)) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    const bool isUp = key == Qt::Key_Up || key == Qt::Key_PageUp;
    const bool isCoarse = isPage || (event->modifiers() & Qt::ShiftModifier);
    const double next =
        nextStep(thousandsFromText(text()).value_or(doubleValue()), isUp, isCoarse ? 10.0 : 1.0);
    typeValue(std::clamp(next, leastStep_, mostStep_));
}

void NumberField::writeOutThousands() {
    if (const auto value = thousandsFromText(text()); value && !isReadOnly())
        typeValue(*value);
}

void NumberField::typeValue(double value) {
    if (!std::isfinite(value))
        return;
    selectAll();
    insert(textFromNumber(value));
}

} // namespace sonotrace
