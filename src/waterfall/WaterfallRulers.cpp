#include "waterfall/WaterfallRulers.h"

#include "waterfall/ColorBar.h"
#include "waterfall/WaterfallScales.h"
#include "waterfall/WaterfallView.h"
#include "widgets/ReadingsPanel.h"

#include <QGridLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
const QString kNone("–");
constexpr std::size_t kReadings = 5;

/// As wide with few digits as with many.
QString number(double value, int width, int decimals) {
    constexpr QChar kFigureSpace(0x2007);
    return QString("%1").arg(value, width, 'f', decimals, kFigureSpace);
}

QString timeText(const std::optional<double>& seconds, TimeScale scale) {
    if (!seconds)
        return scale == TimeScale::Other       ? "other scale"
               : scale == TimeScale::BeforeGap ? "before a gap"
                                               : kNone;
    const double size = std::abs(*seconds);
    if (size < 1000.0)
        return number(*seconds, 8, 3) + " s";
    const auto minutes = std::llround(size / 60.0);
    return QString("%1%2 h %3 min")
        .arg(*seconds < 0.0 ? "-" : "")
        .arg(minutes / 60)
        .arg(minutes % 60, 2, 10, QChar(u'0'));
}

QString levelText(const WaterfallReading& reading) {
    if (!reading.levelDb)
        return kNone;
    QString text = number(*reading.levelDb, 6, 1) + " dB";
    switch (reading.levelBound) {
    case WaterfallReading::Bound::Upper:
        return "≤ " + text;
    case WaterfallReading::Bound::Lower:
        return "≥ " + text;
    case WaterfallReading::Bound::None:
        break;
    }
    return text;
}

Ruler& addRuler(const WaterfallSurroundings& around, Ruler* ruler, const char* name, int row, int column) {
    ruler->setObjectName(name);
    ruler->setMaximumSize(row == 0 ? QWIDGETSIZE_MAX : ScrollingBitmap::kWidth,
                          row == 0 ? ScrollingBitmap::kHeight : QWIDGETSIZE_MAX);
    around.grid.addWidget(ruler, row, column);
    return *ruler;
}

} // namespace

WaterfallRulers::WaterfallRulers(const WaterfallParameters& parameters, const WaterfallImage& image,
                                 const WaterfallSurroundings& around)
    : parameters_(parameters),
      image_(image),
      around_(around),
      frequencies_(addRuler(around, new Ruler(Ruler::Side::Left, "Frequency", "Hz"), "frequencyRuler", 0, 0)),
      times_(addRuler(around, new Ruler(Ruler::Side::Bottom, "Time before the newest column", "s"),
                      "timeRuler", 1, 1)),
      levels_(
          addRuler(around, new Ruler(Ruler::Side::Right, "Level of the colours", "dB"), "levelRuler", 0, 3)) {
    around.colorBar.setMaximumHeight(ScrollingBitmap::kHeight);
    // The widest first: the columns are as wide as they have ever been, and so do not move any more.
    const QString widest = number(-44444.4, 8, 1) + " Hz";
    around.readings.show(std::vector<Reading>(kReadings, {"Above ref.", widest, {}}));
    refresh();
}

WaterfallReadout WaterfallRulers::readout() const {
    return {parameters_, image_, around_.view.shownScrolled()};
}

void WaterfallRulers::setReference(const PicturePoint& point) {
    reference_ = readout().reference(point);
    refresh();
}

void WaterfallRulers::refresh() {
    const WaterfallReadout readout = this->readout();
    showAxes(readout);
    showReadings(readout);
}

void WaterfallRulers::showAxes(const WaterfallReadout& readout) {
    const WaterfallScales scales = waterfallScales(readout, reference_);
    times_.setUnit(scales.times.unit);
    times_.setAxis(scales.times.axis);
    times_.setMarks(scales.times.marks);
    frequencies_.setAxis(scales.frequencies.axis);
    frequencies_.setMarks(scales.frequencies.marks);
    levels_.setAxis(scales.levels.axis);
    around_.colorBar.setColoured(parameters_.colorWaterfallPlot.load(kRelaxed) != 0);
}

void WaterfallRulers::showReadings(const WaterfallReadout& readout) {
    const auto probe = around_.view.probe();
    const WaterfallReading reading = probe ? readout.read(*probe, reference_) : WaterfallReading();
    const auto hertz = [&](const std::optional<double>& value) {
        return value ? number(*value, 8, 1) + " Hz" : reading.hasOtherRows ? QString("other scale") : kNone;
    };
    const bool lacksReference = probe && !reference_;
    around_.readings.show(
        {{"Frequency", hertz(reading.frequencyHz),
          "Frequency under the mouse or the cross-hair. Not told for a column that was painted with other "
          "limits, or at another height of the picture"},
         {"Time ago", timeText(reading.secondsAgo, reading.times),
          "How long before the newest column. Not told where the picture stood still since, or sound was "
          "dropped, or columns came at another rate"},
         {"Level", levelText(reading),
          "Level of the colour, with the limits that its column was painted with, in the picture's own "
          "decibels: 6.25 times the natural logarithm of the magnitude. At most and at least where the "
          "colours end"},
         {"After ref.",
          lacksReference
              ? kNone
              : timeText(reading.secondsFromReference, std::max(reading.times, reading.referenceTimes)),
          "Time after the last right click, which moves with the picture"},
         {"Above ref.", lacksReference ? kNone : hertz(reading.hertzFromReference),
          "Frequency above that of the last right click"}});
}

} // namespace sonotrace
