#pragma once

#include "base/MeasurementOrigin.h"
#include "base/Setting.h"
#include "widgets/Reading.h"
#include "widgets/ReportPlot.h"

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

#include <memory>
#include <vector>

namespace sonotrace {

/// How large a page is. Its layout is in points; a pixel picture has `scale` pixels a point, on paper 96
/// points are an inch.
struct PageSize {
    QSize pixels;
    double scale = 1;      ///< at best
    double leastScale = 1; ///< to which it goes down for what else would not fit
    bool isExact = false;  ///< made around a face, however small that is

    QSize points() const { return (QSizeF(pixels) / scale).toSize(); }

    /// A page for a screen or a slide: its texts grow with it, and stay readable on a small one.
    static PageSize ofPixels(const QSize& pixels);
    static PageSize a4(); ///< lying, at 300 pixels an inch
};

/// What stands on a page.
struct ReportContent {
    QString title;
    MeasurementOrigin origin;
    std::vector<Setting> settings;
    std::vector<Reading> readings;
    int group = 1; ///< so many of either belong side by side
};

/// A page of a report: an instrument's face with its rulers, and what has to be known about it. The page is
/// white whatever the desktop is. It needs an application object for its fonts, but no window. Window thread.
class ReportPicture {
public:
    ReportPicture(ReportContent content, std::unique_ptr<ReportPlot> plot);

    /// The page whose face has exactly so many points, for a screen with `scale` pixels a point.
    PageSize around(const QSize& face, double scale) const;

    /// Empty where there is no memory for it or the size is none.
    QImage image(const PageSize& page) const;
    QByteArray png(const PageSize& page) const;

    /// The same page in lines and letters.
    QByteArray pdf(const PageSize& page) const;

private:
    struct Layout;

    Layout layOut(const PageSize& page, double scale) const;
    Layout fitted(const PageSize& page) const;
    int textHeight(int width) const;
    void paint(QPainter& painter, const Layout& layout) const;
    void paintHead(QPainter& painter, const Layout& layout) const;
    void paintFace(QPainter& painter, const Layout& layout) const;
    void paintPlot(QPainter& painter, const Layout& layout) const;

    const ReportContent content_;
    std::vector<Reading> settings_; ///< of the content, as texts
    std::vector<Reading> readings_;
    const std::unique_ptr<ReportPlot> plot_;
};

/// The bytes of a picture, none of an empty one.
QByteArray pngOf(const QImage& image);

} // namespace sonotrace
