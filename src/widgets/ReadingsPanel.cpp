#include "widgets/ReadingsPanel.h"

#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStringList>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace sonotrace {

namespace {
constexpr int kNameGap = 8;     // points, from a name to its number
constexpr int kColumnGap = 24;  // and from there to the next name
constexpr int kMostDigits = 48; // of a number; a longer one, of an absurd range, is cut
constexpr int kMostRows = 8;    // that the window grows for, if need be: it has to fit small screens
} // namespace

ReadingsPanel::ReadingsPanel(QWidget* parent) : QAbstractScrollArea(parent) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Maximum);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    setFocusPolicy(Qt::TabFocus);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    auto* const action = new QAction("&Copy Readings", this);
    action->setShortcut(QKeySequence::Copy);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, &ReadingsPanel::copy);
    addAction(action);
}

void ReadingsPanel::show(std::vector<Reading> readings) {
    if (readings == readings_)
        return;
    const bool isAsMany = readings.size() == readings_.size();
    readings_ = std::move(readings);
    const std::pair before(nameWidth_, valueWidth_);
    measure();
    if (!isAsMany || before != std::pair(nameWidth_, valueWidth_))
        layOut();
    if (QAccessible::isActive())
        setAccessibleDescription(text().replace(u'\t', u' ').replace(u'\n', QString(". ")));
    viewport()->update();
}

void ReadingsPanel::setLongestValue(const QString& value) {
    longestValue_ = value;
    measure();
    updateGeometry();
}

void ReadingsPanel::measure() {
    const int widest = fontMetrics().horizontalAdvance(QString(kMostDigits, u'0'));
    valueWidth_ = std::max(valueWidth_, fontMetrics().horizontalAdvance(longestValue_));
    for (const Reading& reading : readings_) {
        nameWidth_ = std::max(nameWidth_, fontMetrics().horizontalAdvance(reading.name));
        valueWidth_ = std::max(valueWidth_, std::min(fontMetrics().horizontalAdvance(reading.value), widest));
    }
}

QString ReadingsPanel::text() const {
    QStringList lines;
    for (const Reading& reading : readings_)
        lines << reading.name + u'\t' + reading.value.simplified(); // without what fills up its width
    return lines.join(u'\n');
}

void ReadingsPanel::copy() const {
    QGuiApplication::clipboard()->setText(text());
}

int ReadingsPanel::columns(int width) const {
    const int column = nameWidth_ + kNameGap + valueWidth_ + kColumnGap;
    const int fitting = std::max(1, (width + kColumnGap) / column);
    return fitting >= 2 * group_ ? fitting - fitting % group_ : fitting;
}

int ReadingsPanel::rows(int width) const {
    const int perRow = columns(width);
    return (static_cast<int>(readings_.size()) + perRow - 1) / perRow;
}

void ReadingsPanel::layOut() {
    const int hidden = sizeHint().height() - viewport()->height();
    verticalScrollBar()->setSingleStep(fontMetrics().lineSpacing());
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(hidden, 0));
    updateGeometry();
}

/// Not by the layouts' height for width: they do not let a window grow for it, and squeeze what else is in
/// it.
void ReadingsPanel::resizeEvent(QResizeEvent*) {
    layOut();
}

QSize ReadingsPanel::sizeHint() const {
    return {0, rows(width()) * fontMetrics().lineSpacing()};
}

QSize ReadingsPanel::minimumSizeHint() const {
    return {0, std::min(rows(width()), kMostRows) * fontMetrics().lineSpacing()};
}

bool ReadingsPanel::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip || readings_.empty())
        return QAbstractScrollArea::viewportEvent(event);
    const auto* const help = static_cast<QHelpEvent*>(event);
    const int perRow = columns(width());
    const int column = std::min(help->x() * perRow / std::max(viewport()->width(), 1), perRow - 1);
    const auto i = static_cast<std::size_t>(
        (help->y() + verticalScrollBar()->value()) / fontMetrics().lineSpacing() * perRow + column);
    if (i < readings_.size())
        QToolTip::showText(help->globalPos(), Qt::convertFromPlainText(readings_[i].tip), this);
    return true;
}

void ReadingsPanel::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() != QEvent::FontChange)
        return;
    nameWidth_ = valueWidth_ = 0;
    measure();
    layOut();
}

void ReadingsPanel::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    const int perRow = columns(width());
    const int across = viewport()->width();
    const int line = fontMetrics().lineSpacing();
    QColor quiet = palette().color(QPalette::WindowText);
    quiet.setAlphaF(0.7F);
    for (std::size_t i = 0; i < readings_.size(); ++i) {
        const int column = static_cast<int>(i) % perRow;
        const int left = column * across / perRow;
        const int top = static_cast<int>(i) / perRow * line - verticalScrollBar()->value();
        const int room = (column + 1) * across / perRow - left;
        painter.setPen(quiet);
        painter.drawText(QRect(left, top, room, line), Qt::AlignLeft | Qt::TextSingleLine, readings_[i].name);
        painter.setPen(palette().color(QPalette::WindowText));
        const QRect place(left + nameWidth_ + kNameGap, top, room - nameWidth_ - kNameGap, line);
        painter.drawText(
            place, Qt::AlignLeft | Qt::TextSingleLine,
            fontMetrics().elidedText(readings_[i].value, Qt::ElideRight, std::max(place.width(), 0)));
    }
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

} // namespace sonotrace
