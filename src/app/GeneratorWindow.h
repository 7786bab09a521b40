#pragma once

#include "app/MainMenu.h"

class QAbstractButton;
class QComboBox;
class QMainWindow;
class QString;

namespace sonotrace {

class GeneratorPanel;
class StatusLine;

/// The parts of the generator window that its controller works with.
struct GeneratorWindow {
    MainMenu menu;
    GeneratorPanel* panel; ///< without its rows, which are built once the bank is loaded
    QComboBox* outputPopup;
    QAbstractButton* syncPhases;
    QAbstractButton* allOff;
    StatusLine* status;
};

/// Lays out the generator window: menu bar, panel, output device, phase synchronisation, status bar. The
/// window takes the panel over.
GeneratorWindow buildGeneratorWindow(QMainWindow& window, GeneratorPanel* panel, const QString& soundSystem);

} // namespace sonotrace
