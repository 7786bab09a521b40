#pragma once

#include "waterfall/ShownPicture.h"
#include "waterfall/WaterfallImage.h"

#include <QByteArray>
#include <QWidget>

namespace sonotrace {

/// Shows the bottom left of the waterfall's picture, one pixel a point, and says where it is clicked. Window
/// thread.
class WaterfallView : public QWidget {
    Q_OBJECT

public:
    explicit WaterfallView(QWidget* parent = nullptr);

    /// What is shown; outlives the view. Until then the view stays black.
    void setModel(WaterfallImage& image);

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

private:
    QByteArray written(const char* format) const;

    WaterfallImage* image_ = nullptr;
    ShownPicture shown_;
};

} // namespace sonotrace
