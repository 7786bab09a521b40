#include "waterfall/WaterfallReport.h"

#include "waterfall/ColorSteps.h"
#include "waterfall/PeakScaling.h"
#include "waterfall/WaterfallScales.h"
#include "waterfall/WaterfallTable.h"
#include "widgets/Paper.h"

#include <QImage>
#include <QPainter>

#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr QSize kLeast(320, 160); // points, as what follows
constexpr int kStripWidth = 14;
constexpr int kStripGap = 4;

QImage imageOf(const std::vector<std::uint32_t>& pixels, int width) {
    const auto height = static_cast<int>(pixels.size() / static_cast<std::size_t>(width));
    return QImage(reinterpret_cast<const uchar*>(pixels.data()), width, height,
                  width * ScrollingBitmap::kBytesPerPixel, QImage::Format_RGBA8888);
}

class WaterfallPlot : public ReportPlot {
public:
    WaterfallPlot(const WaterfallReadout& readout, const std::optional<PictureReference>& reference)
        : scales_(waterfallScales(readout, reference)),
          steps_(colorSteps(readout.parameters().colorWaterfallPlot.load(std::memory_order_relaxed) != 0)),
          width_(static_cast<int>(std::ceil(readout.bounds().width))) {
        const auto height = static_cast<int>(std::ceil(readout.bounds().height));
        pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height));
        readout.image().copyRows(ScrollingBitmap::kHeight - height, height, width_,
                                 reinterpret_cast<std::uint8_t*>(pixels_.data()),
                                 width_ * ScrollingBitmap::kBytesPerPixel);
    }

    QSize least() const override { return kLeast; }

    std::vector<RulerSide> sides() const override {
        return {RulerSide::Left, RulerSide::Bottom, RulerSide::Right};
    }

    std::vector<RulerScale> build(const QSize& size) override {
        size_ = size;
        return {scales_.frequencies, scales_.times, scales_.levels};
    }

    void paint(QPainter& painter, const QFont&) override {
        painter.fillRect(QRect(QPoint(0, 0), size_), Qt::black);
        if (pixels_.empty())
            return;
        // On paper every pixel is kept. On a screen's grid each one is a whole one.
        const double scale = isOnPaper(painter) ? 0.0 : painter.combinedTransform().m11();
        const QSize pixels = scale > 0.0 ? (QSizeF(size_) * scale).toSize() : imageOf(pixels_, width_).size();
        const std::vector<std::uint32_t> scaled =
            scaledByPeaks(pixels_, width_, pixels.width(), pixels.height());
        painter.drawImage(QRect(QPoint(0, 0), size_), imageOf(scaled, pixels.width()));
    }

    int stripWidth() const override { return kStripWidth; }

    void paintStrip(QPainter& painter, const QSize& size) override {
        painter.drawImage(QRect(QPoint(0, 0), size).adjusted(kStripGap, 0, 0, 0), steps_);
    }

private:
    const WaterfallScales scales_;
    const QImage steps_;
    const int width_;
    std::vector<std::uint32_t> pixels_; ///< of the view, row by row
    QSize size_;
};

} // namespace

ReportPicture waterfallReport(ReportContent content, const WaterfallReadout& readout,
                              const std::optional<PictureReference>& reference) {
    content.title = "Waterfall";
    if (const auto newest = readout.image().keptColumns().newestScale()) {
        std::vector<Setting> settings = waterfallSettings(newest->scale);
        const WaterfallParameters& parameters = readout.parameters();
        settings.push_back({"Colours", QString("%1 to %2 dB")
                                           .arg(parameters.waterfallMinDB.load(std::memory_order_relaxed))
                                           .arg(parameters.waterfallMaxDB.load(std::memory_order_relaxed))
                                           .toStdString()});
        content.settings.insert(content.settings.begin(), settings.begin(), settings.end());
    }
    return {std::move(content), std::make_unique<WaterfallPlot>(readout, reference)};
}

} // namespace sonotrace
