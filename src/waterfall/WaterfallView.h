#pragma once

#include "waterfall/ShownPicture.h"
#include "waterfall/WaterfallImage.h"
#include "waterfall/WaterfallReadout.h"

#include <QByteArray>
#include <QWidget>

#include <optional>

namespace sonotrace {

/// Shows the bottom left of the waterfall's picture, one pixel a point, and says where it is clicked, with
/// the mouse or with the keys on a cross-hair that they move. Window thread.
class WaterfallView : public QWidget {
    Q_OBJECT

public:
    explicit WaterfallView(QWidget* parent = nullptr);

    /// What is shown; outlives the view. Until then the view stays black.
    void setModel(WaterfallImage& image);

    /// Where the mouse or the cross-hair is, in points from the bottom left corner; nothing without either.
    std::optional<PicturePoint> probe() const;

    /// How far the picture had scrolled when it was painted last.
    ColumnNumber shownScrolled() const { return shownScrolled_; }

    /// The whole picture, 1536 x 1024 with alpha. Empty when Qt has no writer for the format.
    QByteArray ReturnPNG() const;
    QByteArray ReturnTiff() const;

Q_SIGNALS:
    /// In points from the bottom left corner.
    void leftClicked(double x, double y);
    void rightClicked(double x, double y);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void moveCrossHair(const QPoint& by);
    void hideCrossHair();
    PicturePoint fromBottomLeft(const QPointF& place) const { return {place.x(), height() - place.y()}; }
    QByteArray written(const char* format) const;

    WaterfallImage* image_ = nullptr;
    ShownPicture shown_;
    ColumnNumber shownScrolled_ = 0;
    std::optional<QPointF> probe_; ///< of the mouse or of the cross-hair
    bool hasCrossHair_ = false;
};

} // namespace sonotrace
