#pragma once

class QAction;
class QMenuBar;

namespace sonotrace {

/// Tags of the menu items that are switched by what the recorder does.
inline constexpr int kStartRecordingTag = 30000;
inline constexpr int kStopRecordingTag = 30001;

/// The program's menu. Each action carries the name of its operation; its shortcut works from every window.
struct MainMenu {
    QAction* menuOpenSettings;
    QAction* menuSaveSettings;
    QAction* undoOpenSettings;
    QAction* doRecordingFileMenu;
    QAction* doStopRecordingFileMenu;
    QAction* quit;
    QAction* menuGenerators;
    QAction* menuSweep;
    QAction* menuSpectrum;
    QAction* menuWaterfall;
    QAction* menuWScope;
    QAction* allOff;
    QAction* refreshDevices;
    QAction* restoreInputVolumes; ///< can be ticked
    QAction* calibrate;
    QAction* arrangeWindows;
    QAction* showHelp;
    QAction* about;
};

/// Fills an empty menu bar.
MainMenu buildMainMenu(QMenuBar& bar);

/// Logs the menus and the first menu's items, to tell from a user's log which menu a build has.
void deleteSomeMenuItems(const QMenuBar& bar);

} // namespace sonotrace
