#include "app/About.h"

#include "widgets/Preferences.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QSysInfo>

namespace sonotrace {

void showAbout(QWidget& window, const QString& soundSystem, const QString& device) {
    auto* about = new QMessageBox(&window);
    about->setObjectName("about");
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->setWindowTitle("About Sonotrace");
    about->setTextFormat(Qt::PlainText); // devices have any name
    about->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    const QString text =
        "Sonotrace %1, an audio test bench\n\n"
        "Free software under the GNU General Public License, version 3 or later, without any "
        "warranty.\n\n"
        "Sound system: %2, %3\nToolkit: Qt %4, %5\nSystem: %6\n\n"
        "Please attach to a report of a fault: these lines, what the program writes when it is "
        "started in a terminal, the output of \"pactl info\", and the preferences, %7";
    about->setText(text.arg(QCoreApplication::applicationVersion(), soundSystem, device, QString(qVersion()),
                            QGuiApplication::platformName(), QSysInfo::prettyProductName(),
                            Preferences::defaultPath()));
    about->open();
}

} // namespace sonotrace
