#include "spectrum/SpectrumView.h"

#include "spectrum/SpectrumGrid.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

/// A line parallel to the axes, crisp: the pixels of drawLine() without antialiasing, at a quarter of its
/// time.
void paintLine(QPainter& painter, const QPointF& from, const QPointF& to, Qt::GlobalColor colour) {
    constexpr double kReach = 0.5 * SpectrumGrid::kLineWidth; // to the sides and, as far, at the ends
    painter.fillRect(QRectF(from, to).normalized().adjusted(-kReach, -kReach, kReach, kReach), colour);
}

/// Neighbours are filled together as high as the lowest of them, row by row: one by one they are slow.
void paintBars(QPainter& painter, std::span<const PlotRect> bars) {
    constexpr std::size_t kTogether = 32;
    while (!bars.empty()) {
        const auto group = bars.first(std::min(kTogether, bars.size()));
        bars = bars.subspan(group.size());
        const PlotRect& lowest = *std::ranges::min_element(group, {}, &PlotRect::height);
        const double width = group.back().x + group.back().width - group.front().x;
        painter.fillRect(QRectF(group.front().x, lowest.y, width, lowest.height), Qt::green);
        for (const PlotRect& bar : group)
            painter.fillRect(QRectF(bar.x, bar.y + lowest.height, bar.width, bar.height - lowest.height),
                             Qt::green);
    }
}

struct OverlayLook {
    const char* title;
    QRgb colour;
};
constexpr std::array<OverlayLook, kSpectrumOverlays> kLooks = {
    {{"Power average", qRgb(0x4d, 0xc4, 0xff)},
     {"Peak hold", qRgb(0xff, 0xd0, 0x40)},
     {"Reference", qRgb(0xe0, 0x80, 0xff)},
     {"Difference, 0 dB at -50", qRgb(0xff, 0xff, 0xff)},
     {"Corrected", qRgb(0xff, 0x90, 0x60)}}};
constexpr double kOverlayWidth = 1.0; // their colours would not be told apart in a thinner line
constexpr QRgb kMarkerColour = qRgb(0xff, 0xff, 0x80);
constexpr int kFarStep = 10; // columns, with Shift
constexpr int kPageStep = 100;

QPolygonF polygonOf(std::span<const PlotPoint> points) {
    QPolygonF line;
    line.reserve(static_cast<qsizetype>(points.size()));
    for (const PlotPoint& point : points)
        line.append(QPointF(point.x, point.y));
    return line;
}

QFont labelFont(const QFont& system) {
    QFont font = system;
    font.setBold(true);
    font.setPixelSize(static_cast<int>(SpectrumGrid::kLabelSize));
    font.setLetterSpacing(QFont::AbsoluteSpacing, SpectrumGrid::kLabelKerning);
    return font;
}

} // namespace

SpectrumView::SpectrumView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    setFocusPolicy(Qt::StrongFocus);
}

void SpectrumView::setModel(const SpectrumAnalysis& analysis, const SpectrumDisplay& display) {
    analysis_ = &analysis;
    display_ = &display;
    update();
}

QSize SpectrumView::minimumSizeHint() const {
    return {320, static_cast<int>(std::ceil(SpectrumGrid::kLowestView))};
}

void SpectrumView::showSpectrum() {
    const Setting setting{*display_, analysis_->fftSize(), size()};
    if (setting_ == setting) {
        buildTrace();
        update(paintedRows_ | traceRows());
    } else {
        update();
    }
    setting_ = setting;
}

PlotRect SpectrumView::plotBounds() const {
    return {0.0, 0.0, static_cast<double>(width()), static_cast<double>(height())};
}

SpectrumGeometry SpectrumView::plotGeometry() const {
    return spectrumGeometry(plotBounds(), *display_, analysis_->fftSize());
}

void SpectrumView::buildTrace() {
    trace_.build(plotGeometry(), *display_, analysis_->powerSpectrum(), analysis_->fftSize());
    for (std::size_t i = 0; overlays_ && i < overlayLines_.size(); ++i)
        overlays_->build(static_cast<SpectrumOverlay>(i), plotBounds(), *display_, overlayLines_[i]);
}

std::optional<double> SpectrumView::traceHeight(int column) const {
    const auto i = static_cast<std::size_t>(column - plotGeometry().left);
    if (i < trace_.bars().size())
        return trace_.bars()[i].y + trace_.bars()[i].height;
    if (i + 1 < trace_.line().size())
        return trace_.line()[i + 1].y;
    return std::nullopt;
}

void SpectrumView::setMarkers(std::vector<SpectrumMarker> markers) {
    if (markers == markers_)
        return;
    markers_ = std::move(markers);
    update();
}

/// The rows in which the trace is, or the upper ends of its bars are.
QRect SpectrumView::traceRows() const {
    double lowest = height();
    double highest = 0.0;
    const auto reach = [&](double y) {
        lowest = std::min(lowest, y);
        highest = std::max(highest, std::min<double>(y, height()));
    };
    for (const PlotPoint& point : trace_.line())
        reach(point.y);
    for (const auto& line : overlayLines_)
        for (const PlotPoint& point : line)
            reach(point.y);
    for (const PlotRect& bar : trace_.bars())
        reach(bar.y + bar.height);
    constexpr int kReach = 2; // of the line's width and its smooth edge
    const int top = height() - static_cast<int>(std::ceil(highest)) - kReach;
    const int bottom = height() - static_cast<int>(std::floor(lowest)) + kReach;
    return QRect(0, top, width(), bottom - top) & rect();
}

void SpectrumView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (!analysis_)
        return;
    buildTrace();
    paintedRows_ = traceRows();
    paintTrace(painter);
    paintOverlays(painter);
    paintGrid(painter, spectrumGrid(plotGeometry(), *display_));
    paintLegend(painter);
    paintMarkers(painter);
}

void SpectrumView::paintTrace(QPainter& painter) const {
    painter.save();
    painter.translate(0, height());
    painter.scale(1, -1);
    paintBars(painter, trace_.bars());
    if (!trace_.line().empty()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::green, SpectrumTrace::kLineWidth));
        painter.drawPolyline(polygonOf(trace_.line()));
    }
    painter.restore();
}

void SpectrumView::paintOverlays(QPainter& painter) const {
    painter.save();
    painter.translate(0, height());
    painter.scale(1, -1);
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = 0; i < overlayLines_.size(); ++i) {
        painter.setPen(QPen(QColor(kLooks[i].colour), kOverlayWidth));
        painter.drawPolyline(polygonOf(overlayLines_[i]));
    }
    painter.restore();
}

void SpectrumView::paintLegend(QPainter& painter) {
    painter.setFont(font());
    const QFontMetrics metrics = painter.fontMetrics();
    const int sample = 2 * metrics.height();
    int y = metrics.height() / 2;
    for (std::size_t i = 0; i < overlayLines_.size(); ++i) {
        if (overlayLines_[i].empty())
            continue;
        const QStaticText& text = texts_.laidOut(kLooks[i].title, painter.font());
        const int left = plotGeometry().right - static_cast<int>(text.size().width()) - sample;
        painter.fillRect(left - sample / 4, y, plotGeometry().right - left + sample / 4, metrics.height(),
                         QColor(0, 0, 0, 200));
        painter.fillRect(left, y + metrics.height() / 2, sample * 3 / 4, 2, QColor(kLooks[i].colour));
        painter.setPen(QColor(kLooks[i].colour));
        painter.drawStaticText(left + sample, y, text);
        y += metrics.height();
    }
}

void SpectrumView::paintMarkers(QPainter& painter) {
    const SpectrumGeometry geometry = plotGeometry();
    painter.setPen(QColor(kMarkerColour));
    const auto paintAt = [&](double x, const QString& text) {
        if (!(x >= geometry.left && x < geometry.right))
            return;
        const int column = static_cast<int>(x);
        painter.fillRect(column, 0, 1, height() - static_cast<int>(geometry.yFloor), QColor(kMarkerColour));
        painter.drawText(column + 4, painter.fontMetrics().height(), text);
    };
    for (const SpectrumMarker& marker : markers_)
        paintAt(placeOf(geometry, *display_, marker.frequencyHz), marker.letter);
    if (pointsWithKeys_ && pointer_)
        paintAt(*pointer_, {});
}

void SpectrumView::point(int column) {
    const SpectrumGeometry geometry = plotGeometry();
    if (geometry.width > 0)
        pointer_ = std::clamp(column, geometry.left, geometry.right - 1);
}

void SpectrumView::mouseMoveEvent(QMouseEvent* event) {
    const int column = static_cast<int>(event->position().x());
    if (std::exchange(pointsWithKeys_, false))
        update();
    pointer_.reset();
    if (analysis_ && column >= plotGeometry().left && column < plotGeometry().right)
        pointer_ = column;
}

void SpectrumView::mousePressEvent(QMouseEvent* event) {
    mouseMoveEvent(event);
    if (event->button() == Qt::LeftButton && pointer_)
        Q_EMIT clicked(*pointer_);
    else if (event->button() == Qt::RightButton)
        Q_EMIT escaped();
}

void SpectrumView::leaveEvent(QEvent*) {
    if (!pointsWithKeys_)
        pointer_.reset();
}

void SpectrumView::keyPressEvent(QKeyEvent* event) {
    const int step = event->modifiers() & Qt::ShiftModifier ? kFarStep : 1;
    const int from = pointer_.value_or(width() / 2);
    switch (event->key()) {
    case Qt::Key_Left:
        point(from - step);
        break;
    case Qt::Key_Right:
        point(from + step);
        break;
    case Qt::Key_PageUp:
        point(from + kPageStep);
        break;
    case Qt::Key_PageDown:
        point(from - kPageStep);
        break;
    case Qt::Key_Home:
        point(0);
        break;
    case Qt::Key_End:
        point(width());
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (pointer_)
            Q_EMIT clicked(*pointer_);
        return;
    case Qt::Key_Escape:
        Q_EMIT escaped();
        return;
    default:
        event->ignore();
        return;
    }
    pointsWithKeys_ = true;
    update();
}

/// With the keys it begins where it was, or in the middle. A window that is only activated shows no pointer.
void SpectrumView::focusInEvent(QFocusEvent* event) {
    if (analysis_ && (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)) {
        pointsWithKeys_ = true;
        point(pointer_.value_or(width() / 2));
    }
    update();
}

void SpectrumView::focusOutEvent(QFocusEvent* event) {
    const bool comesBack =
        event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason;
    if (!comesBack && std::exchange(pointsWithKeys_, false))
        pointer_.reset();
    update();
}

void SpectrumView::resizeEvent(QResizeEvent*) {
    pointer_.reset();
    Q_EMIT resized();
}

void SpectrumView::paintGrid(QPainter& painter, const SpectrumGrid& grid) {
    painter.setFont(labelFont(font()));
    const auto grey = static_cast<float>(std::clamp(display_->gridBrightness, 0.0F, 1.0F));
    painter.setPen(QColor::fromRgbF(grey, grey, grey));
    for (const FrequencyLine& line : grid.frequencyLines) {
        paintLine(painter, {line.x, height() - line.top}, {line.x, height() - line.bottom}, Qt::white);
        paintLabel(painter, line.label);
    }
    for (const DecibelLine& line : grid.decibelLines) {
        paintLine(painter, {line.left, height() - line.y}, {line.right, height() - line.y}, Qt::red);
        paintLabel(painter, line.label);
    }
}

void SpectrumView::paintLabel(QPainter& painter, const GridLabel& label) {
    const double baseline = height() - label.y - painter.fontMetrics().descent();
    const QStaticText& text = texts_.laidOut(QString::fromStdString(label.text), painter.font());
    painter.drawStaticText(QPointF(label.x, baseline - QFontMetricsF(painter.font()).ascent()), text);
}

} // namespace sonotrace
