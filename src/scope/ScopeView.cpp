#include "scope/ScopeView.h"

#include <QImage>
#include <QPainter>

#include <array>
#include <cmath>

namespace sonotrace {

namespace {

/// Above so many samples a point the picture is painted column by column.
constexpr std::size_t kDenseTrace = 2;

} // namespace

ScopeView::ScopeView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void ScopeView::setModel(const ScopeControls& controls, const ScopeCapture& capture) {
    controls_ = &controls;
    capture_ = &capture;
    update();
}

void ScopeView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (controls_)
        trace_.build(*controls_, *capture_, width(), height());
    const std::size_t corners = trace_.line(0).size(); // one more than samples
    if (corners > kDenseTrace * static_cast<std::size_t>(width()) + 1)
        paintColumns(painter);
    else
        paintLines(painter);
}

void ScopeView::paintLines(QPainter& painter) {
    painter.fillRect(rect(), Qt::black);
    painter.translate(0, height());
    painter.scale(1, -1);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::green, ScopeTrace::kLineWidth));
    for (const std::int32_t ch : {0, 1}) {
        line_.clear();
        for (const PlotPoint& point : trace_.line(ch))
            line_.append(QPointF(point.x, point.y));
        painter.drawPolyline(line_);
    }
}

void ScopeView::paintColumns(QPainter& painter) {
    const double scale = painter.deviceTransform().m11();
    painter.scale(1.0 / scale, 1.0 / scale);
    block_.resize(static_cast<std::size_t>(std::ceil(height() * scale)));
    const QImage image(reinterpret_cast<const uchar*>(block_.data()), ScopeColumns::kWidth,
                       static_cast<int>(block_.size()), sizeof(ScopeColumns::Row), QImage::Format_RGB32);
    const std::array lines = {trace_.line(0), trace_.line(1)};
    for (int x = 0; x < width() * scale; x += static_cast<int>(ScopeColumns::kWidth)) {
        columns_.paint(lines, scale, x, block_);
        painter.drawImage(x, 0, image);
    }
}

} // namespace sonotrace
