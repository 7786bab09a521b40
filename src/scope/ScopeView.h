#pragma once

#include "scope/ScopeColumns.h"
#include "scope/ScopeTrace.h"

#include <QPolygonF>
#include <QWidget>

#include <vector>

namespace sonotrace {

/// Paints the traces of both channels, green on black. All it paints comes as points or pixels from the
/// engine; the points' y grows upward.
class ScopeView : public QWidget {
    Q_OBJECT

public:
    explicit ScopeView(QWidget* parent = nullptr);

    /// What is shown; both outlive the view. Until then the view stays empty.
    void setModel(const ScopeControls& controls, const ScopeCapture& capture);

    /// What the picture on the screen shows of a channel.
    const ScopeFindings& findings(std::int32_t ch) const { return trace_.findings(ch); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintLines(QPainter& painter);
    void paintColumns(QPainter& painter);

    const ScopeControls* controls_ = nullptr;
    const ScopeCapture* capture_ = nullptr;
    ScopeTrace trace_;
    ScopeColumns columns_;
    // Reused from redraw to redraw.
    QPolygonF line_;
    std::vector<ScopeColumns::Row> block_;
};

} // namespace sonotrace
