#include "scope/ScopeView.h"

#include <QPainter>

namespace sonotrace {

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
    painter.fillRect(rect(), Qt::black);
    if (!controls_)
        return;
    trace_.build(*controls_, *capture_, width(), height());
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

} // namespace sonotrace
