#pragma once

#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumPainter.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace sonotrace {

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

    /// What is painted over the trace at this moment.
    SpectrumMarks marks() const;

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

    void build();
    void point(int column);

    const SpectrumAnalysis* analysis_ = nullptr;
    const SpectrumDisplay* display_ = nullptr;
    SpectrumOverlays* overlays_ = nullptr;
    SpectrumPainter painter_;
    std::vector<SpectrumMarker> markers_;
    std::optional<int> pointer_;
    bool pointsWithKeys_ = false;    ///< then the pointer is painted
    QRect paintedRows_;              ///< of the trace on the screen
    std::optional<Setting> setting_; ///< of the last spectrum that was shown
};

} // namespace sonotrace
