#pragma once

#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumGeometry.h"
#include "spectrum/SpectrumTrace.h"
#include "widgets/CachedTexts.h"

#include <QWidget>

#include <optional>

namespace sonotrace {

struct SpectrumGrid;

/// Paints the latest spectrum. All it paints comes as numbers from the engine, whose y grows upward.
class SpectrumView : public QWidget {
    Q_OBJECT

public:
    explicit SpectrumView(QWidget* parent = nullptr);

    /// What is shown; both outlive the view. Until then the view stays empty.
    void setModel(const SpectrumAnalysis& analysis, const SpectrumDisplay& display);

    /// To be called for each new spectrum: has the rows painted that its trace enters or the last one leaves.
    void showSpectrum();

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// What the whole picture depends on, besides the spectrum.
    struct Setting {
        SpectrumDisplay display;
        double fftSize;
        QSize size;
        bool operator==(const Setting&) const = default;
    };

    SpectrumGeometry plotGeometry() const;
    void buildTrace();
    QRect traceRows() const;
    void paintTrace(QPainter& painter) const;
    void paintGrid(QPainter& painter, const SpectrumGrid& grid);
    void paintLabel(QPainter& painter, const struct GridLabel& label);

    const SpectrumAnalysis* analysis_ = nullptr;
    const SpectrumDisplay* display_ = nullptr;
    SpectrumTrace trace_;
    QRect paintedRows_;              ///< of the trace on the screen
    std::optional<Setting> setting_; ///< of the last spectrum that was shown
    CachedTexts texts_;
};

} // namespace sonotrace
