#include "widgets/StatusRow.h"

#include <QPainter>
#include <QStringList>
#include <QStyle>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace sonotrace {

namespace {

bool isAlarming(Hint::Urgency urgency) {
    return urgency == Hint::Urgency::Warning || urgency == Hint::Urgency::Fault;
}

/// One that is read on light windows and one for dark ones.
QColor alarmColour(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() > 127 ? QColor(0x8f, 0x3f, 0x00)
                                                             : QColor(0xf5, 0xb8, 0x4a);
}

} // namespace

StatusRow::StatusRow(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void StatusRow::say(Hints hints) {
    if (hints == said_)
        return;
    said_ = hints;
    std::ranges::stable_sort(hints, std::greater(), &Hint::urgency);
    QStringList shown;
    QStringList all;
    for (const Hint& hint : hints) {
        all << hint.text;
        if (shown.isEmpty() || hints.front().urgency == Hint::Urgency::Usual)
            shown << hint.text;
    }
    const Hint::Urgency urgency = hints.empty() ? Hint::Urgency::Usual : hints.front().urgency;
    if (std::exchange(urgency_, urgency) != urgency)
        update();
    setText(shown.join(" · "));
    // Names of devices are no markup.
    setToolTip(Qt::convertFromPlainText(all.join('\n'), Qt::WhiteSpaceNormal));
    setAccessibleDescription(all.join(". "));
}

QSize StatusRow::minimumSizeHint() const {
    return {0, fontMetrics().height() + 2};
}

void StatusRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QRect place = rect();
    if (isAlarming(urgency_)) {
        const int size = fontMetrics().height();
        const auto kind =
            urgency_ == Hint::Urgency::Fault ? QStyle::SP_MessageBoxCritical : QStyle::SP_MessageBoxWarning;
        style()->standardIcon(kind).paint(&painter, QRect(0, (height() - size) / 2, size, size));
        place.setLeft(size + size / 3);
        painter.setPen(alarmColour(palette()));
    } else {
        painter.setPen(palette().color(QPalette::WindowText));
    }
    painter.drawText(place, Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, place.width()));
}

} // namespace sonotrace
