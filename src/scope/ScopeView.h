#pragma once

#include "scope/ScopeTrace.h"

#include <QPolygonF>
#include <QWidget>

namespace sonotrace {

/// Paints the traces of both channels, green on black. All it paints comes as points from the engine, whose y
/// grows upward.
class ScopeView : public QWidget {
    Q_OBJECT

public:
    explicit ScopeView(QWidget* parent = nullptr);

    /// What is shown; both outlive the view. Until then the view stays empty.
    void setModel(const ScopeControls& controls, const ScopeCapture& capture);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const ScopeControls* controls_ = nullptr;
    const ScopeCapture* capture_ = nullptr;
    ScopeTrace trace_;
    QPolygonF line_; ///< reused from redraw to redraw
};

} // namespace sonotrace
