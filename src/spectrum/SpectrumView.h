#pragma once

#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumGeometry.h"
#include "spectrum/SpectrumTrace.h"
#include "widgets/CachedTexts.h"

#include <QWidget>

namespace sonotrace {

struct SpectrumGrid;

/// Paints the latest spectrum. All it paints comes as numbers from the engine, whose y grows upward.
class SpectrumView : public QWidget {
    Q_OBJECT

public:
    explicit SpectrumView(QWidget* parent = nullptr);

    /// What is shown; both outlive the view. Until then the view stays empty.
    void setModel(const SpectrumAnalysis& analysis, const SpectrumDisplay& display);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintTrace(QPainter& painter) const;
    void paintGrid(QPainter& painter, const SpectrumGrid& grid);
    void paintLabel(QPainter& painter, const struct GridLabel& label);

    const SpectrumAnalysis* analysis_ = nullptr;
    const SpectrumDisplay* display_ = nullptr;
    SpectrumTrace trace_;
    CachedTexts texts_;
};

} // namespace sonotrace
