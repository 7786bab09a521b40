#pragma once

#include "scope/ScopePainter.h"

#include <QWidget>

#include <array>
#include <vector>

namespace sonotrace {

/// Paints the traces of both channels, green on black, and over them a pair of cursors when it is asked for.
/// All it paints comes as points or pixels from the engine; the points' y grows upward.
class ScopeView : public QWidget {
    Q_OBJECT

public:
    explicit ScopeView(QWidget* parent = nullptr);

    /// What is shown; both outlive the view. Until then the view stays empty.
    void setModel(const ScopeControls& controls, const ScopeCapture& capture);

    /// There is something new to show.
    void redisplay();

    /// What the picture on the screen shows.
    const ScopeTrace& trace() const { return trace_; }

    /// The cursors are moved with the mouse, or one of them, the active one, with the keys.
    void setCursorsShown(bool areShown);
    bool areCursorsShown() const { return areCursorsShown_; }

    const ScopeCursorPlaces& cursors() const { return cursors_; }

    /// Of cursor A or B, in points from the left edge.
    double cursorPlace(std::size_t cursor) const { return cursors_[cursor] * width(); }

Q_SIGNALS:
    /// The picture on the screen is a new one, or its cursors stand elsewhere.
    void painted();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override { focusChanged(event); }
    void focusOutEvent(QFocusEvent* event) override { focusChanged(event); }

private:
    void moveCursor(double place);
    void repaintCursors();
    void focusChanged(QFocusEvent* event);

    const ScopeControls* controls_ = nullptr;
    const ScopeCapture* capture_ = nullptr;
    ScopeTrace trace_;
    ScopePainter painter_;
    ScopeCursorPlaces cursors_{0.25, 0.75};
    std::size_t activeCursor_ = 0;
    bool areCursorsShown_ = false;
    // Why there is to be a redraw; neither where the window system asks for it.
    bool isNew_ = false;
    bool isCursor_ = false;
};

} // namespace sonotrace
