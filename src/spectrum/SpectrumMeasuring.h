#pragma once

#include "measure/SpectrumReader.h"
#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumView.h"
#include "widgets/ReadingsPanel.h"

#include <QElapsedTimer>
#include <QObject>

#include <array>
#include <functional>
#include <optional>

namespace sonotrace {

/// The numbers under the spectrum: takes them off the last spectrum, four times a second at most, and of a
/// window that is seen only; keeps the marks. Window thread.
class SpectrumMeasuring : public QObject {
    Q_OBJECT

public:
    /// All arguments outlive it.
    SpectrumMeasuring(const SpectrumAnalysis& analysis, const SpectrumDisplay& display, SpectrumView& view,
                      ReadingsPanel& pointerPanel, ReadingsPanel& panel);

    // What is asked of each spectrum, from the next update on.
    void setFundamental(std::optional<double> hz);
    void setMains(double hz); ///< 0: none
    void setHarmonicsListed(bool listed);
    void setResponse(std::function<double(double)> responseDb);
    /// How a level in dBFS is worded.
    void setLevelText(std::function<QString(double levelDbfs)> levelText);

    /// To be called for each spectrum, and often.
    void takeNewSpectrum() { isNew_ = true; }
    void update();

    /// Reads the spectrum that is there, if it has not been read yet and is seen.
    void readNow();

    const SpectrumQuestion& question() const { return question_; }

    /// The numbers that are shown, with those at the marks in front if there are any.
    std::vector<Reading> shownReadings() const;

    const SpectrumReadings& readings() const { return readings_; }

private:
    void ask();
    void showReadings();
    void showPointer();
    void mark(int column);
    void dropMarks();
    std::optional<SpectrumTone> toneAt(int column) const;
    bool isAveraged() const;

    const SpectrumAnalysis& analysis_;
    const SpectrumDisplay& display_;
    SpectrumView& view_;
    ReadingsPanel& pointerPanel_;
    ReadingsPanel& panel_;
    SpectrumReader reader_;
    SpectrumQuestion question_;
    SpectrumReadings readings_;
    bool harmonicsListed_ = false;
    std::function<QString(double)> levelText_;
    std::vector<SpectrumMarker> markers_; ///< none, A, or A and B
    bool isNew_ = false;
    bool asksAnew_ = true;
    std::optional<int> shownPointer_;
    QElapsedTimer lastReading_;
};

} // namespace sonotrace
