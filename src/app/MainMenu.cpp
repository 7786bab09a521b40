#include "app/MainMenu.h"

#include "base/SystemLog.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QObject>
#include <QStringList>

namespace sonotrace {

namespace {

QAction* addItem(QMenu& menu, const char* name, const QString& title, const QKeySequence& shortcut,
                 const QString& tip, int tag = 0) {
    QAction* item = menu.addAction(title);
    item->setObjectName(QLatin1String(name));
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
    return list.join(QStringLiteral(", "));
}

} // namespace

MainMenu buildMainMenu(QMenuBar& bar) {
    MainMenu menu{};
    QMenu& file = *bar.addMenu(QObject::tr("&File"));
    menu.menuOpenSettings =
        addItem(file, "menuOpenSettings", QObject::tr("&Open Settings…"), QKeySequence::Open,
                QObject::tr("Load the generators from a settings file"));
    menu.menuSaveSettings =
        addItem(file, "menuSaveSettings", QObject::tr("&Save Settings…"), QKeySequence::Save,
                QObject::tr("Save the generators to a settings file"));
    file.addSeparator();
    menu.doRecordingFileMenu = addItem(
        file, "doRecordingFileMenu", QObject::tr("Start &Recording…"), QKeySequence(Qt::CTRL | Qt::Key_R),
        QObject::tr("Record what is played to a WAV file"), kStartRecordingTag);
    menu.doStopRecordingFileMenu = addItem(file, "doStopRecordingFileMenu", QObject::tr("S&top Recording"),
                                           QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R),
                                           QObject::tr("Finish the recording"), kStopRecordingTag);
    file.addSeparator();
    menu.quit = addItem(file, "quit", QObject::tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q),
                        QObject::tr("Save the preferences and quit"));
    menu.quit->setMenuRole(QAction::QuitRole);

    QMenu& tools = *bar.addMenu(QObject::tr("&Tools"));
    menu.menuGenerators =
        addItem(tools, "menuGenerators", QObject::tr("&Generators"), QKeySequence(Qt::CTRL | Qt::Key_1),
                QObject::tr("Bring the generators to the front"));
    menu.menuSweep = addItem(tools, "menuSweep", QObject::tr("S&weep"), QKeySequence(Qt::CTRL | Qt::Key_2),
                             QObject::tr("Open the frequency sweep"));
    menu.menuSpectrum =
        addItem(tools, "menuSpectrum", QObject::tr("&Spectrum"), QKeySequence(Qt::CTRL | Qt::Key_3),
                QObject::tr("Open the spectrum analyzer"));
    menu.menuWaterfall = addItem(tools, "menuWaterfall", QObject::tr("Water&fall"),
                                 QKeySequence(Qt::CTRL | Qt::Key_4), QObject::tr("Open the waterfall"));
    menu.menuWScope = addItem(tools, "menuWScope", QObject::tr("S&cope"), QKeySequence(Qt::CTRL | Qt::Key_5),
                              QObject::tr("Open the two-channel oscilloscope"));

    QMenu& help = *bar.addMenu(QObject::tr("&Help"));
    menu.showHelp = addItem(help, "showHelp", QObject::tr("Sonotrace &Manual"), QKeySequence::HelpContents,
                            QObject::tr("Open the manual in the document viewer"));
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
