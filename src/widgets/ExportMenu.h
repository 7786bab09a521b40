#pragma once

#include "widgets/ReportPicture.h"

#include <QMenu>
#include <QSize>

#include <functional>
#include <string>

class QPushButton;

namespace sonotrace {

class Preferences;

/// What an instrument's window has to give. All are asked at the moment of the user's choice.
struct WindowExports {
    std::function<QString()> missing;       ///< a sentence, when there is nothing yet
    std::function<ReportPicture()> picture; ///< refers to what is shown; rendered at once
    std::function<QSize()> face;            ///< points of the instrument's face on the screen
    std::function<std::string()> table;     ///< comma-separated
};

/// The menu of a window's "Export" button: the picture as a report page and the numbers as a table, to the
/// clipboard or to a file. What is saved is what was there when the menu was used, however long the file
/// panel stays open. Its shortcuts work in all of the window. Window thread.
class ExportMenu : public QMenu {
    Q_OBJECT

public:
    /// Becomes the button's menu. `preferences` keep the size of pictures, for all windows alike.
    ExportMenu(QPushButton& button, Preferences& preferences, WindowExports exports);

    void copyPicture();
    void savePicture();
    void copyData();
    void saveData();

Q_SIGNALS:
    void said(const QString& sentence); ///< what was done, or what went wrong

private:
    QAction* add(const char* name, const QString& title, const QKeySequence& shortcut, const QString& tip,
                 void (ExportMenu::*operation)());
    void addSizes();
    PageSize page(const ReportPicture& picture) const;
    bool isThere();

    QPushButton& button_;
    Preferences& preferences_;
    const WindowExports exports_;
};

} // namespace sonotrace
