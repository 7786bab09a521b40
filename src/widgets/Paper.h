#pragma once

#include <QPaintEngine>
#include <QPainter>

namespace sonotrace {

/// Whether shapes are kept as shapes, whatever size they are looked at in: then pixels are none of ours.
inline bool isOnPaper(const QPainter& painter) {
    return painter.paintEngine()->type() == QPaintEngine::Pdf;
}

} // namespace sonotrace
