#pragma once

#include "widgets/CachedTexts.h"

#include <QWidget>

namespace sonotrace {

/// A horizontal peak meter. The value is linear, 0 to 1; the bar shows it in decibels, from -60 dB to full
/// scale. Beside it stands the highest of every five values.
class LevelIndicator : public QWidget {
    Q_OBJECT

public:
    explicit LevelIndicator(QWidget* parent = nullptr);

    double doubleValue() const { return value_; }

    /// Shows a peak, 0 to 1.
    void setDoubleValue(double value);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeBar();

    QRectF bar_;
    CachedTexts texts_;
    double value_ = 0.0;
    double highest_ = 0.0; ///< since the readout
    int valuesSinceReadout_ = 0;
    long tenths_;     ///< the readout in tenths of a decibel
    QString readout_; ///< and as text
};

} // namespace sonotrace
