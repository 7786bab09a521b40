#include "app/MainMenu.h"

#include "base/SystemLog.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QStringList>

namespace sonotrace {

namespace {

QAction* addItem(QMenu& menu, const char* name, const QString& title, const QKeySequence& shortcut,
                 const QString& tip, int tag = 0) {
    QAction* item = menu.addAction(title);
    item->setObjectName(name);
    item->setShortcut(shortcut);
    item->setShortcutContext(Qt::ApplicationShortcut);
    item->setStatusTip(tip);
    item->setToolTip(tip);
    if (tag != 0)
        item->setProperty("tag", tag);
    return item;
}

QString titles(const QList<QAction*>& actions) {
    QStringList list;
    for (const QAction* action : actions) {
        if (!action->isSeparator())
            list << action->text().remove(u'&');
    }
    return list.join(", ");
}

} // namespace

MainMenu buildMainMenu(QMenuBar& bar) {
    MainMenu menu{};
    QMenu& file = *bar.addMenu("&File");
    menu.menuOpenSettings = addItem(file, "menuOpenSettings", "&Open Settings…", QKeySequence::Open,
                                    "Load the generators from a settings file");
    menu.menuSaveSettings = addItem(file, "menuSaveSettings", "&Save Settings…", QKeySequence::Save,
                                    "Save the generators to a settings file");
    menu.undoOpenSettings =
        addItem(file, "undoOpenSettings", "&Undo Open Settings", QKeySequence(),
                "Bring the generators back as they were before the last settings file was opened");
    menu.undoOpenSettings->setEnabled(false);
    file.addSeparator();
    menu.doRecordingFileMenu =
        addItem(file, "doRecordingFileMenu", "Start &Recording…", QKeySequence(Qt::CTRL | Qt::Key_R),
                "Record what is played to a WAV file", kStartRecordingTag);
    menu.doStopRecordingFileMenu =
        addItem(file, "doStopRecordingFileMenu", "S&top Recording",
                QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R), "Finish the recording", kStopRecordingTag);
    file.addSeparator();
    menu.quit =
        addItem(file, "quit", "&Quit", QKeySequence(Qt::CTRL | Qt::Key_Q), "Save the preferences and quit");
    menu.quit->setMenuRole(QAction::QuitRole);

    QMenu& tools = *bar.addMenu("&Tools");
    menu.menuGenerators = addItem(tools, "menuGenerators", "&Generators", QKeySequence(Qt::CTRL | Qt::Key_1),
                                  "Bring the generators to the front");
    menu.menuSweep =
        addItem(tools, "menuSweep", "S&weep", QKeySequence(Qt::CTRL | Qt::Key_2), "Open the frequency sweep");
    menu.menuSpectrum = addItem(tools, "menuSpectrum", "&Spectrum", QKeySequence(Qt::CTRL | Qt::Key_3),
                                "Open the spectrum analyzer");
    menu.menuWaterfall = addItem(tools, "menuWaterfall", "Water&fall", QKeySequence(Qt::CTRL | Qt::Key_4),
                                 "Open the waterfall");
    menu.menuWScope = addItem(tools, "menuWScope", "S&cope", QKeySequence(Qt::CTRL | Qt::Key_5),
                              "Open the two-channel oscilloscope");
    tools.addSeparator();
    menu.allOff = addItem(tools, "allOff", "&All Off", QKeySequence(Qt::CTRL | Qt::Key_Period),
                          "Switch all generators and the sweep off at once");
    menu.refreshDevices = addItem(tools, "refreshDevices", "Refresh &Devices", QKeySequence::Refresh,
                                  "List the devices anew in all windows; what plays or listens goes on");
    menu.restoreInputVolumes =
        addItem(tools, "restoreInputVolumes", "Restore &Input Volumes at Quit", QKeySequence(),
                "At the end, give the inputs the volumes back that they had before Sonotrace set them");
    menu.restoreInputVolumes->setCheckable(true);
    menu.calibrate = addItem(tools, "calibrate", "Cali&bration…", QKeySequence(),
                             "Say what full scale is, in volts or pascals, and correct microphones");
    menu.arrangeWindows = addItem(tools, "arrangeWindows", "A&rrange Windows", QKeySequence(),
                                  "Lay the open windows side by side on this window's screen");

    QMenu& help = *bar.addMenu("&Help");
    menu.showHelp = addItem(help, "showHelp", "Sonotrace &Manual", QKeySequence::HelpContents,
                            "Open the manual in the document viewer");
    menu.about = addItem(help, "about", "&About Sonotrace", QKeySequence(),
                         "Version, licence, and what to attach to a report of a fault");
    menu.about->setMenuRole(QAction::AboutRole);
    return menu;
}

void deleteSomeMenuItems(const QMenuBar& bar) {
    const QList<QAction*> menus = bar.actions();
    systemLog("myMenu: %s", qUtf8Printable(bar.objectName()));
    systemLog("itemArray: %s", qUtf8Printable(titles(menus)));
    if (!menus.isEmpty() && menus.first()->menu())
        systemLog("appSubMenu itemArray: %s", qUtf8Printable(titles(menus.first()->menu()->actions())));
}

} // namespace sonotrace
