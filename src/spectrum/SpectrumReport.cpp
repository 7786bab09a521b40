#include "spectrum/SpectrumReport.h"

#include "spectrum/SpectrumAxes.h"
#include "spectrum/SpectrumGrid.h"

#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr int kLeastWidth = 320; // points

class SpectrumPlot : public ReportPlot {
public:
    explicit SpectrumPlot(const SpectrumShown& shown) : shown_(shown) {}

    QSize least() const override {
        return {kLeastWidth, static_cast<int>(std::ceil(SpectrumGrid::kLowestView))};
    }

    std::vector<RulerSide> sides() const override { return {RulerSide::Bottom, RulerSide::Right}; }

    std::vector<RulerScale> build(const QSize& size) override {
        painter_.build(size, shown_.spectrum, shown_.display, shown_.overlays);
        const SpectrumGeometry geometry =
            spectrumGeometry(spectrumBounds(size), shown_.display, shown_.spectrum.fftSize);
        return {{.side = RulerSide::Bottom,
                 .unit = "Hz",
                 .axis = frequencyAxis(shown_.display),
                 .before = kLeftMargin,
                 .behind = kRightMargin},
                {.side = RulerSide::Right,
                 .unit = "dB",
                 .axis = levelAxis(geometry, size.height()),
                 .before = geometry.yFloor}};
    }

    void paint(QPainter& painter, const QFont& font) override { painter_.paint(painter, font, shown_.marks); }

private:
    const SpectrumShown shown_;
    SpectrumPainter painter_;
};

} // namespace

ReportPicture spectrumReport(ReportContent content, const SpectrumShown& shown) {
    content.title = "Spectrum";
    return {std::move(content), std::make_unique<SpectrumPlot>(shown)};
}

} // namespace sonotrace
