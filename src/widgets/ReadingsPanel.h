#pragma once

#include "widgets/Reading.h"

#include <QAbstractScrollArea>

#include <vector>

namespace sonotrace {

/// The numbers under a picture, in columns as wide as the widest of them. They can be copied as text, with
/// the keys too, and are read out by screen readers. Where there are too many for the window they scroll.
/// Window thread.
class ReadingsPanel : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit ReadingsPanel(QWidget* parent = nullptr);

    /// To be called as often as there are new numbers; the same number of readings each time keeps the
    /// picture above from jumping.
    void show(std::vector<Reading> readings);
    using QAbstractScrollArea::show;

    /// The longest value to expect: with room for it the picture does not jump when it comes.
    void setLongestValue(const QString& value);

    /// How many readings belong side by side: columns are a multiple of that, where two of them fit. 1 at
    /// first.
    void setGroup(int readings) { group_ = readings; }

    const std::vector<Reading>& readings() const { return readings_; }

    /// All of them, a line each: name, tabulator, value.
    QString text() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent*) override { viewport()->update(); }
    void focusOutEvent(QFocusEvent*) override { viewport()->update(); }

private:
    int columns(int width) const;
    int rows(int width) const;
    void measure();
    void layOut();
    void copy() const;

    std::vector<Reading> readings_;
    int group_ = 1;
    QString longestValue_;
    int nameWidth_ = 0; ///< of the widest; they never shrink, so that columns stay where they are
    int valueWidth_ = 0;
};

} // namespace sonotrace
