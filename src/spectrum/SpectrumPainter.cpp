#include "spectrum/SpectrumPainter.h"

#include "spectrum/SpectrumGrid.h"
#include "widgets/Paper.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace sonotrace {

namespace {

/// A line parallel to the axes, crisp: the pixels of drawLine() without antialiasing, at a quarter of its
/// time.
void paintLine(QPainter& painter, const QPointF& from, const QPointF& to, double thickness,
               Qt::GlobalColor colour) {
    const double reach = 0.5 * thickness; // to the sides and, as far, at the ends
    painter.fillRect(QRectF(from, to).normalized().adjusted(-reach, -reach, reach, reach), colour);
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

/// On paper bars side by side would show their seams.
void paintOutline(QPainter& painter, std::span<const PlotRect> bars) {
    QPolygonF outline;
    outline.append(QPointF(bars.front().x, bars.front().y));
    for (const PlotRect& bar : bars) {
        outline.append(QPointF(bar.x, bar.y + bar.height));
        outline.append(QPointF(bar.x + bar.width, bar.y + bar.height));
    }
    outline.append(QPointF(bars.back().x + bars.back().width, bars.back().y));
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::green);
    painter.drawPolygon(outline);
}

QPolygonF polygonOf(std::span<const PlotPoint> points) {
    QPolygonF line;
    line.reserve(static_cast<qsizetype>(points.size()));
    for (const PlotPoint& point : points)
        line.append(QPointF(point.x, point.y));
    return line;
}

QFont labelFont(const QFont& system, const QPainter& painter) {
    constexpr double kScreenDots = 96.0;
    QFont font = system;
    font.setBold(true);
    font.setPixelSize(static_cast<int>(SpectrumGrid::kLabelSize));
    // Where an inch has more dots it is taken for so many more of them.
    const double kerning = isOnPaper(painter) ? kScreenDots / painter.device()->logicalDpiX() : 1.0;
    font.setLetterSpacing(QFont::AbsoluteSpacing, SpectrumGrid::kLabelKerning * kerning);
    return font;
}

} // namespace

PlotRect spectrumBounds(const QSize& size) {
    return {0.0, 0.0, static_cast<double>(size.width()), static_cast<double>(size.height())};
}

void SpectrumPainter::build(const QSize& size, const PaintedSpectrum& spectrum,
                            const SpectrumDisplay& display, SpectrumOverlays* overlays) {
    size_ = size;
    display_ = display;
    const PlotRect bounds = spectrumBounds(size);
    geometry_ = spectrumGeometry(bounds, display, spectrum.fftSize);
    trace_.build(geometry_, display, spectrum.power, spectrum.fftSize);
    for (std::size_t i = 0; overlays && i < overlayLines_.size(); ++i)
        overlays->build(static_cast<SpectrumOverlay>(i), bounds, display, overlayLines_[i]);
}

QRect SpectrumPainter::traceRows() const {
    double lowest = size_.height();
    double highest = 0.0;
    const auto reach = [&](double y) {
        lowest = std::min(lowest, y);
        highest = std::max(highest, std::min<double>(y, size_.height()));
    };
    for (const PlotPoint& point : trace_.line())
        reach(point.y);
    for (const auto& line : overlayLines_)
        for (const PlotPoint& point : line)
            reach(point.y);
    for (const PlotRect& bar : trace_.bars())
        reach(bar.y + bar.height);
    constexpr int kReach = 2; // of the line's width and its smooth edge
    const int top = size_.height() - static_cast<int>(std::ceil(highest)) - kReach;
    const int bottom = size_.height() - static_cast<int>(std::floor(lowest)) + kReach;
    return QRect(0, top, size_.width(), bottom - top) & QRect(QPoint(0, 0), size_);
}

void SpectrumPainter::paint(QPainter& painter, const QFont& font, const SpectrumMarks& marks) {
    painter.fillRect(QRect(QPoint(0, 0), size_), Qt::black);
    paintTrace(painter);
    paintOverlays(painter);
    painter.setFont(labelFont(font, painter));
    paintGrid(painter, spectrumGrid(geometry_, display_));
    painter.setFont(font);
    paintLegend(painter);
    paintMarks(painter, marks);
}

void SpectrumPainter::paintTrace(QPainter& painter) const {
    painter.save();
    painter.translate(0, size_.height());
    painter.scale(1, -1);
    if (isOnPaper(painter) && !trace_.bars().empty())
        paintOutline(painter, trace_.bars());
    else
        paintBars(painter, trace_.bars());
    if (!trace_.line().empty()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::green, SpectrumTrace::kLineWidth));
        painter.drawPolyline(polygonOf(trace_.line()));
    }
    painter.restore();
}

void SpectrumPainter::paintOverlays(QPainter& painter) const {
    painter.save();
    painter.translate(0, size_.height());
    painter.scale(1, -1);
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = 0; i < overlayLines_.size(); ++i) {
        painter.setPen(QPen(QColor(kLooks[i].colour), kOverlayWidth));
        painter.drawPolyline(polygonOf(overlayLines_[i]));
    }
    painter.restore();
}

void SpectrumPainter::paintLegend(QPainter& painter) {
    const QFontMetrics metrics = painter.fontMetrics();
    const int sample = 2 * metrics.height();
    int y = metrics.height() / 2;
    for (std::size_t i = 0; i < overlayLines_.size(); ++i) {
        if (overlayLines_[i].empty())
            continue;
        const QStaticText& text = legendTexts_.laidOut(kLooks[i].title, painter.font());
        const int left = geometry_.right - static_cast<int>(text.size().width()) - sample;
        painter.fillRect(left - sample / 4, y, geometry_.right - left + sample / 4, metrics.height(),
                         QColor(0, 0, 0, 200));
        painter.fillRect(left, y + metrics.height() / 2, sample * 3 / 4, 2, QColor(kLooks[i].colour));
        painter.setPen(QColor(kLooks[i].colour));
        painter.drawStaticText(left + sample, y, text);
        y += metrics.height();
    }
}

void SpectrumPainter::paintMarks(QPainter& painter, const SpectrumMarks& marks) const {
    painter.setPen(QColor(kMarkerColour));
    const auto paintAt = [&](double x, const QString& text) {
        if (!(x >= geometry_.left && x < geometry_.right))
            return;
        const int column = static_cast<int>(x);
        painter.fillRect(
            QRectF(column, 0, lineThickness(painter), size_.height() - static_cast<int>(geometry_.yFloor)),
            QColor(kMarkerColour));
        painter.drawText(column + 4, painter.fontMetrics().height(), text);
    };
    for (const SpectrumMarker& marker : marks.markers)
        paintAt(placeOf(geometry_, display_, marker.frequencyHz), marker.letter);
    if (marks.column)
        paintAt(*marks.column, {});
}

void SpectrumPainter::paintGrid(QPainter& painter, const SpectrumGrid& grid) {
    const auto grey = static_cast<float>(std::clamp(display_.gridBrightness, 0.0F, 1.0F));
    painter.setPen(QColor::fromRgbF(grey, grey, grey));
    const double thickness = SpectrumGrid::kLineWidth * lineThickness(painter);
    for (const FrequencyLine& line : grid.frequencyLines) {
        paintLine(painter, {line.x, size_.height() - line.top}, {line.x, size_.height() - line.bottom},
                  thickness, Qt::white);
        paintLabel(painter, line.label);
    }
    for (const DecibelLine& line : grid.decibelLines) {
        paintLine(painter, {line.left, size_.height() - line.y}, {line.right, size_.height() - line.y},
                  thickness, Qt::red);
        paintLabel(painter, line.label);
    }
}

void SpectrumPainter::paintLabel(QPainter& painter, const GridLabel& label) {
    const double baseline = size_.height() - label.y - painter.fontMetrics().descent();
    const QStaticText& text = texts_.laidOut(QString::fromStdString(label.text), painter.font());
    painter.drawStaticText(QPointF(label.x, baseline - QFontMetricsF(painter.font()).ascent()), text);
}

} // namespace sonotrace
