#pragma once

#include "generator/GeneratorBank.h"

#include <QWidget>

#include <array>
#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;

namespace sonotrace {

class NumberField;
class OutputLevels;
class RealSlider;

/// The container of the generator panel; its coordinates grow downward from the top-left corner.
using WindowView = QWidget;

/// The thirteen rows of controls, one a generator. Volume sliders write the bank at once; the other controls
/// are read by poll(). Window thread.
class GeneratorPanel : public WindowView {
    Q_OBJECT

public:
    /// `bank` and `levels` outlive the panel. `blockSize`: of the spectrum analyzer.
    GeneratorPanel(GeneratorBank& bank, const OutputLevels& levels, std::function<int()> blockSize);

    /// Creates the rows from the bank as it is.
    void BuildControls();

    /// Copies check boxes, pop-ups, frequencies (0.1 to 22000 Hz) and phases (-360 to 360 degrees) into the
    /// bank.
    void poll();

    /// Unticks all generators.
    void switchAllOff();

    /// Shows `settings` in row `slot` and puts them into the bank, unclamped.
    void setSlot(int slot, const GeneratorSettings& settings);

    /// The bank's settings of a slot, its enabled flag from the check box.
    GeneratorSettings slotSettings(int slot) const;

private:
    struct Row {
        QCheckBox* enabled;
        QComboBox* waveform;
        NumberField* frequency;
        NumberField* phase;
        RealSlider* volumeLeft;
        QLabel* readoutLeft;
        RealSlider* volumeRight;
        QLabel* readoutRight;
    };

    /// Where something lies whose place is given for a font of the usual size.
    QRect place(int x, int y, int width, int height) const;

    void buildRow(int slot, const GeneratorSettings& settings);
    void addFrequencyActions(NumberField& field) const;
    void placeCaptions();
    RealSlider* volumeSlider(int slot, const char* name, int tag, int x, const QString& channel,
                             double volume);
    QLabel* readout(int slot, const char* name, int x, const QString& channel, double volume);
    void volSliderEvent(const RealSlider& sender);

    Row& row(int slot) { return rows_[static_cast<std::size_t>(slot)]; }
    const Row& row(int slot) const { return rows_[static_cast<std::size_t>(slot)]; }

    GeneratorBank& bank_;
    const OutputLevels& levels_;
    const std::function<int()> blockSize_;
    const double scale_;
    std::array<Row, kGeneratorCount> rows_{};
};

} // namespace sonotrace
