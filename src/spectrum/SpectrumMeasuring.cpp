#include "spectrum/SpectrumMeasuring.h"

#include "spectrum/SpectrumWording.h"
#include "widgets/LevelText.h"

#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr qint64 kReadingInterval = 250; // ms
constexpr int kReach = 4;                // columns that a click may miss a tone by
const QString kNothing = "–";

} // namespace

SpectrumMeasuring::SpectrumMeasuring(const SpectrumAnalysis& analysis, const SpectrumDisplay& display,
                                     SpectrumView& view, ReadingsPanel& pointerPanel, ReadingsPanel& panel)
    : analysis_(analysis),
      display_(display),
      view_(view),
      pointerPanel_(pointerPanel),
      panel_(panel),
      levelText_([](double levelDbfs) { return levelText({}, levelDbfs); }) {
    pointerPanel_.setLongestValue("20000.00 Hz  -100.00 dBFS  plot -100.0 dB");
    connect(&view_, &SpectrumView::clicked, this, &SpectrumMeasuring::mark);
    connect(&view_, &SpectrumView::escaped, this, &SpectrumMeasuring::dropMarks);
}

void SpectrumMeasuring::ask() {
    asksAnew_ = true;
}

void SpectrumMeasuring::setFundamental(std::optional<double> hz) {
    question_.fundamentalHz = hz;
    ask();
}

void SpectrumMeasuring::setMains(double hz) {
    question_.mainsHz = hz;
    ask();
}

void SpectrumMeasuring::setHarmonicsListed(bool listed) {
    harmonicsListed_ = listed;
    ask();
}

void SpectrumMeasuring::setResponse(std::function<double(double)> responseDb) {
    question_.responseDb = std::move(responseDb);
    ask();
}

void SpectrumMeasuring::setLevelText(std::function<QString(double)> levelText) {
    levelText_ = std::move(levelText);
    ask();
}

void SpectrumMeasuring::update() {
    if (!view_.isVisible() || !view_.updatesEnabled() || view_.window()->isMinimized())
        return;
    const bool isDue = !lastReading_.isValid() || lastReading_.hasExpired(kReadingInterval);
    // A new size may be prepared while its first spectrum is still being collected.
    const bool isWhole = analysis_.blockSum().size() == analysis_.windowCoeffs().size();
    if (isNew_ && isDue && isWhole && !analysis_.blockSum().empty()) {
        reader_.take({analysis_.blockSum(), analysis_.windowCoeffs(), analysis_.summedBlocks()});
        isNew_ = false;
        lastReading_.start();
        asksAnew_ = true;
    }
    const double from = display_.logMode != 0 ? 1.0 : display_.spectrumStartFreq;
    const double to = display_.logMode != 0 ? std::pow(10.0, kSpectrumDecades) : display_.spectrumEndFreq;
    const bool isRange = std::isfinite(from) && std::isfinite(to); // else it would be another each time
    if (isRange && (question_.fromHz != from || question_.toHz != to)) {
        question_.fromHz = from;
        question_.toHz = to;
        asksAnew_ = true;
    }
    const bool isAsked = std::exchange(asksAnew_, false);
    if (isAsked) {
        readings_ = reader_.read(question_);
        showReadings();
    }
    if (isAsked || view_.pointer() != shownPointer_)
        showPointer();
}

void SpectrumMeasuring::readNow() {
    lastReading_.invalidate();
    update();
}

std::vector<Reading> SpectrumMeasuring::shownReadings() const {
    std::vector<Reading> shown = panel_.readings();
    const std::vector<Reading>& pointed = pointerPanel_.readings();
    if (!markers_.empty() && pointed.size() > 1)
        shown.insert(shown.begin(), pointed.begin() + 1, pointed.end()); // the pointer is not a mark
    return shown;
}

bool SpectrumMeasuring::isAveraged() const {
    return analysis_.summedBlocks() > 1 && analysis_.maxPower() > 0.0; // else it is silent
}

void SpectrumMeasuring::showReadings() {
    panel_.show(wordedSpectrum(readings_, question_, harmonicsListed_, levelText_, isAveraged()));
}

/// What the picture shows in a column: it holds all bins from the one of the column before to its own.
std::optional<SpectrumTone> SpectrumMeasuring::toneAt(int column) const {
    const SpectrumGeometry geometry = view_.plotGeometry();
    const auto binAt = [&](int x) {
        return std::floor(frequencyAt(geometry, display_, x) / geometry.binHz) * geometry.binHz;
    };
    return reader_.toneBetween(binAt(column - 1), binAt(column), question_);
}

void SpectrumMeasuring::showPointer() {
    shownPointer_ = view_.pointer();
    QString pointed = kNothing;
    if (shownPointer_) {
        const double frequency = frequencyAt(view_.plotGeometry(), display_, *shownPointer_);
        const auto tone = toneAt(*shownPointer_);
        const auto height = view_.traceHeight(*shownPointer_);
        if (std::isfinite(frequency))
            pointed =
                hertzText(frequency) + "  " + (tone ? wordedLevel(tone->levelDbfs, levelText_) : kNothing);
        if (height)
            pointed += QString("  plot %1 dB").arg(plottedDecibels(view_.plotGeometry(), *height), 0, 'f', 1);
    }
    std::array<std::optional<SpectrumTone>, 2> marked;
    for (std::size_t i = 0; i < markers_.size(); ++i) {
        const double hz = markers_[i].frequencyHz;
        const double half = view_.plotGeometry().binHz / 2.0;
        marked[i] = reader_.toneBetween(hz - half, hz + half, question_);
        if (marked[i])
            marked[i]->frequencyHz = hz;
    }
    QString difference = kNothing;
    if (marked[0] && marked[1]) {
        difference = hertzText(marked[1]->frequencyHz - marked[0]->frequencyHz);
        if (marked[0]->levelDbfs && marked[1]->levelDbfs)
            difference += "  " + decibelText(*marked[1]->levelDbfs - *marked[0]->levelDbfs);
    }
    const QString tip =
        "Frequency, level as a sine's, and the decibels of the picture's grid. A click or Return "
        "sets mark A, another one B; the right button or Escape takes them away";
    pointerPanel_.show({{"Pointer", pointed, tip},
                        {"A", wordedTone(marked[0], levelText_, isAveraged()), tip},
                        {"B", wordedTone(marked[1], levelText_, isAveraged()), tip},
                        {"B - A", difference, "Difference of the marks' frequencies and levels"}});
}

/// At the tone near the column, if one stands out there. A third mark is the first of new ones.
void SpectrumMeasuring::mark(int column) {
    const double frequency = frequencyAt(view_.plotGeometry(), display_, column);
    if (!std::isfinite(frequency))
        return;
    if (markers_.size() == 2)
        markers_.clear();
    const double low = frequencyAt(view_.plotGeometry(), display_, column - kReach);
    const double high = frequencyAt(view_.plotGeometry(), display_, column + kReach);
    const double bin = view_.plotGeometry().binHz;
    auto tone = reader_.toneBetween(low, high, question_);
    if (tone && (tone->frequencyHz < low + bin || tone->frequencyHz > high - bin))
        tone = toneAt(column); // the slope of one that is farther away
    markers_.push_back({markers_.empty() ? u'A' : u'B', tone ? tone->frequencyHz : frequency});
    view_.setMarkers(markers_);
    ask();
}

void SpectrumMeasuring::dropMarks() {
    markers_.clear();
    view_.setMarkers(markers_);
    ask();
}

} // namespace sonotrace
