#pragma once

#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumGeometry.h"
#include "spectrum/SpectrumOverlays.h"
#include "spectrum/SpectrumTrace.h"
#include "widgets/CachedTexts.h"

#include <QWidget>

#include <array>
#include <optional>
#include <vector>

namespace sonotrace {

struct SpectrumGrid;

/// A frequency that the user has marked.
struct SpectrumMarker {
    QChar letter;
    double frequencyHz = 0;
    bool operator==(const SpectrumMarker&) const = default;
};

/// Paints the latest spectrum, and what is asked for over it. All it paints comes as numbers from the engine,
/// whose y grows upward. It can be pointed at with the mouse, or with the arrow keys: with Shift and the page
/// keys by further, Return clicks, Escape takes the marks away.
class SpectrumView : public QWidget {
    Q_OBJECT

public:
    explicit SpectrumView(QWidget* parent = nullptr);

    /// What is shown; both outlive the view. Until then the view stays empty.
    void setModel(const SpectrumAnalysis& analysis, const SpectrumDisplay& display);
    void setOverlays(SpectrumOverlays& overlays) { overlays_ = &overlays; }

    void setMarkers(std::vector<SpectrumMarker> markers);

    /// Where the plot lies in the view at this moment.
    SpectrumGeometry plotGeometry() const;

    /// Column that is pointed at, within the plot.
    std::optional<int> pointer() const { return pointer_; }

    /// Height of the trace in a column as it was last painted, in points from below.
    std::optional<double> traceHeight(int column) const;

    /// To be called for each new spectrum: has the rows painted that its trace enters or the last one leaves.
    void showSpectrum();

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void clicked(int column); ///< of the plot
    void escaped();
    void resized(); ///< or otherwise its plot has another place

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// What the whole picture depends on, besides the spectrum.
    struct Setting {
        SpectrumDisplay display;
        double fftSize;
        QSize size;
        bool operator==(const Setting&) const = default;
    };

    PlotRect plotBounds() const;
    void buildTrace();
    void point(int column);
    QRect traceRows() const;
    void paintTrace(QPainter& painter) const;
    void paintOverlays(QPainter& painter) const;
    void paintLegend(QPainter& painter);
    void paintMarkers(QPainter& painter);
    void paintGrid(QPainter& painter, const SpectrumGrid& grid);
    void paintLabel(QPainter& painter, const struct GridLabel& label);

    const SpectrumAnalysis* analysis_ = nullptr;
    const SpectrumDisplay* display_ = nullptr;
    SpectrumOverlays* overlays_ = nullptr;
    SpectrumTrace trace_;
    std::array<std::vector<PlotPoint>, kSpectrumOverlays> overlayLines_;
    std::vector<SpectrumMarker> markers_;
    std::optional<int> pointer_;
    bool pointsWithKeys_ = false;    ///< then the pointer is painted
    QRect paintedRows_;              ///< of the trace on the screen
    std::optional<Setting> setting_; ///< of the last spectrum that was shown
    CachedTexts texts_;
};

} // namespace sonotrace
