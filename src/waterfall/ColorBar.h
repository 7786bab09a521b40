#pragma once

#include <QImage>
#include <QWidget>

namespace sonotrace {

/// The colours of the waterfall from the floor of its scale, at the bottom, to the ceiling. Window thread.
class ColorBar : public QWidget {
    Q_OBJECT

public:
    explicit ColorBar(QWidget* parent = nullptr);

    /// Colours, or greys.
    void setColoured(bool isColoured);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isColoured_ = false;
    QImage steps_;
};

} // namespace sonotrace
