#include "spectrum/SpectrumView.h"

#include "spectrum/SpectrumGrid.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

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

SpectrumGeometry SpectrumView::plotGeometry() const {
    const PlotRect bounds{0.0, 0.0, static_cast<double>(width()), static_cast<double>(height())};
    return spectrumGeometry(bounds, *display_, analysis_->fftSize());
}

void SpectrumView::buildTrace() {
    trace_.build(plotGeometry(), *display_, analysis_->powerSpectrum(), analysis_->fftSize());
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
    paintGrid(painter, spectrumGrid(plotGeometry(), *display_));
}

void SpectrumView::paintTrace(QPainter& painter) const {
    painter.save();
    painter.translate(0, height());
    painter.scale(1, -1);
    paintBars(painter, trace_.bars());
    if (!trace_.line().empty()) {
        QPolygonF line;
        line.reserve(static_cast<qsizetype>(trace_.line().size()));
        for (const PlotPoint& point : trace_.line())
            line.append(QPointF(point.x, point.y));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::green, SpectrumTrace::kLineWidth));
        painter.drawPolyline(line);
    }
    painter.restore();
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
