#include "scope/ScopeReport.h"

#include "scope/ScopeAxes.h"

#include <utility>

namespace sonotrace {

namespace {

constexpr QSize kLeast(320, 160); // points

class ScopePlot : public ReportPlot {
public:
    explicit ScopePlot(ScopePicture shown) : shown_(std::move(shown)) {}

    QSize least() const override { return kLeast; }

    std::vector<RulerSide> sides() const override {
        return {RulerSide::Left, RulerSide::Right, RulerSide::Bottom};
    }

    std::vector<RulerScale> build(const QSize& size) override {
        size_ = size;
        std::array<double, 2> offsets = shown_.offsets;
        for (double& offset : offsets)
            if (shown_.offsetHeight > 0.0)
                offset *= size.height() / shown_.offsetHeight;
        shown_.trace.layOut(offsets, size.width(), size.height());
        return {levelRuler(RulerSide::Left, 0), levelRuler(RulerSide::Right, 1), timeRuler()};
    }

    void paint(QPainter& painter, const QFont&) override {
        painter_.paint(painter, size_, shown_.trace);
        if (shown_.cursors)
            painter_.paintCursors(painter, size_, *shown_.cursors, std::nullopt, 1.0);
    }

private:
    RulerScale levelRuler(RulerSide side, std::int32_t ch) const {
        const ScopeLevelAxis axis =
            scopeLevelAxis(shown_.trace.scale(ch), size_.height(), shown_.calibration);
        return {.side = side,
                .unit = QString::fromStdString(axis.unit),
                .axis = axis.levels.axis,
                .before = axis.levels.below,
                .behind = axis.levels.over};
    }

    RulerScale timeRuler() const {
        RulerScale ruler{.side = RulerSide::Bottom, .unit = "ms", .axis = shown_.trace.timeAxis()};
        for (std::size_t i = 0; shown_.cursors && i < shown_.cursors->size(); ++i)
            ruler.marks.push_back(
                {ruler.axis.valueAt((*shown_.cursors)[i]), kScopeCursorNames[i], kScopeCursorColours[i]});
        return ruler;
    }

    ScopePicture shown_;
    QSize size_;
    ScopePainter painter_;
};

} // namespace

ReportPicture scopeReport(ReportContent content, ScopePicture shown) {
    content.title = "Oscilloscope";
    return {std::move(content), std::make_unique<ScopePlot>(std::move(shown))};
}

} // namespace sonotrace
