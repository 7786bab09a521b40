#include "widgets/TypedValue.h"

#include "widgets/NumberText.h"
#include "widgets/RealSlider.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QToolTip>

#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr double kFullInputVolume = 1000.0;

/// The field that stands in for a label while a value is typed, and goes when that is done.
class ValueField : public QLineEdit {
public:
    ValueField(RealSlider& slider, QLabel& label, const ValueNotation& notation)
        : QLineEdit(notation.write(slider.doubleValue()), label.parentWidget()),
          slider_(slider),
          notation_(notation),
          shown_(text()) {
        setAccessibleName(slider.accessibleName());
        const QSize size =
            label.size().expandedTo({fontMetrics().horizontalAdvance(shown_ + "00000"), sizeHint().height()});
        QRect place(QPoint(), size);
        place.moveCenter(label.geometry().center());
        place.moveRight(std::min(place.right(), parentWidget()->width() - 1));
        setGeometry(place);
        selectAll();
        connect(this, &QLineEdit::editingFinished, this, [this] { close(text()); });
        show();
        setFocus();
    }

protected:
    bool event(QEvent* event) override {
        // Nobody else takes the key as a shortcut.
        if (event->type() == QEvent::ShortcutOverride && isEscape(*event))
            event->accept();
        return QLineEdit::event(event);
    }

    void keyPressEvent(QKeyEvent* event) override {
        isEscape(*event) ? close(shown_) : QLineEdit::keyPressEvent(event);
    }

private:
    static bool isEscape(const QEvent& event) {
        return static_cast<const QKeyEvent&>(event).key() == Qt::Key_Escape;
    }

    /// A text that is as it was does not round the value to what it says.
    void close(const QString& text) {
        disconnect(this, &QLineEdit::editingFinished, nullptr, nullptr);
        if (hasFocus())
            slider_.setFocus();
        deleteLater();
        hide();
        if (text == shown_)
            return;
        const std::optional<double> read = notation_.read(text);
        if (!read)
            return;
        const double value = *read;
        slider_.enterValue(value);
        constexpr double kRounding = 1e-6; // of the range: what a notation makes of its ends
        const double slack = kRounding * (slider_.maximumValue() - slider_.minimumValue());
        if (value > slider_.maximumValue() + slack || value < slider_.minimumValue() - slack)
            QToolTip::showText(slider_.mapToGlobal(slider_.rect().bottomLeft()),
                               QString("%1 is beyond the slider's range: set to %2")
                                   .arg(text, notation_.write(slider_.doubleValue())),
                               &slider_);
    }

    RealSlider& slider_;
    const ValueNotation notation_;
    const QString shown_;
};

/// Opens the field when its label is asked to.
class ValueOpener : public QObject {
public:
    ValueOpener(RealSlider& slider, QLabel& label, ValueNotation notation)
        : QObject(&label), slider_(slider), label_(label), notation_(std::move(notation)) {
        label.installEventFilter(this);
        slider.installEventFilter(this);
        connect(&slider, &RealSlider::typingAsked, this, [this] { open(); });
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::EnabledChange && watched == &slider_)
            label_.setEnabled(slider_.isEnabled());
        if (notation_.describe && (event->type() == QEvent::ToolTip || event->type() == QEvent::FocusIn))
            describe(*static_cast<QWidget*>(watched));
        const bool isAsked =
            watched == &label_ && event->type() == QEvent::MouseButtonDblClick && slider_.isEnabled();
        if (isAsked)
            open();
        return isAsked;
    }

private:
    void open() { new ValueField(slider_, label_, notation_); }

    /// Only when it is wanted: it depends on what else is on.
    void describe(QWidget& widget) {
        QString& before = usualTips_[&widget];
        if (before.isEmpty())
            before = widget.toolTip();
        const QString text = notation_.describe(slider_.doubleValue());
        widget.setToolTip(text.isEmpty() ? before : text + '\n' + before);
        widget.setAccessibleDescription(widget.toolTip());
    }

    RealSlider& slider_;
    QLabel& label_;
    const ValueNotation notation_;
    QMap<QWidget*, QString> usualTips_; ///< their usual tips
};

void addHint(QWidget& widget, const QString& hint) {
    const QString tip = widget.toolTip();
    widget.setToolTip(tip.isEmpty() ? hint : tip + '\n' + hint);
    widget.setAccessibleDescription(widget.toolTip());
}

} // namespace

ValueNotation plainNotation(const QString& unit) {
    const auto write = [unit](double value) { return QString("%1 %2").arg(value).arg(unit).trimmed(); };
    const auto read = [unit](const QString& text) -> std::optional<double> {
        const auto typed = numberAndUnit(text);
        if (!typed || !(typed->unit.isEmpty() || typed->unit == unit.toLower()))
            return std::nullopt;
        return typed->number;
    };
    return {write, read};
}

ValueNotation volumeNotation(double full, double exponent) {
    const auto write = [full](double value) { return QString("%1 %").arg(value / full * 100.0); };
    const auto read = [full, exponent](const QString& text) -> std::optional<double> {
        const auto typed = numberAndUnit(text);
        if (typed && typed->unit == "db")
            return full * std::pow(10.0, typed->number / (20.0 * exponent));
        if (typed && (typed->unit.isEmpty() || typed->unit == "%"))
            return full * typed->number / 100.0;
        return std::nullopt;
    };
    return {write, read};
}

void letType(RealSlider& slider, QLabel& label, const ValueNotation& notation) {
    new ValueOpener(slider, label, notation);
    addHint(label, "Double-click to type it.");
    addHint(slider, "F2 types the value, Ctrl with an arrow key moves finely, Delete goes back to the value "
                    "of a first start.");
}

void showInputVolume(RealSlider& slider, QLabel& label, double exponent) {
    const auto show = [&label, exponent](double value) {
        const QString decibels =
            value > 0.0 ? QString::number(20.0 * exponent * std::log10(value / kFullInputVolume), 'f', 1)
                        : "−∞";
        label.setText(QString("%1 %  %2 dB").arg(std::round(value) / 10.0).arg(decibels));
    };
    QObject::connect(&slider, &RealSlider::doubleValueChanged, &label, show);
    show(slider.doubleValue());
    letType(slider, label, volumeNotation(kFullInputVolume, exponent));
}

} // namespace sonotrace
