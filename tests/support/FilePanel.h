#pragma once

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

namespace sonotrace {

/// Answers the next file panel: chooses `path`, or cancels when it is empty. To be called before the panel
/// opens.
inline void answerFilePanel(const QString& path, QString* title = nullptr) {
    auto* timer = new QTimer(qApp);
    timer->callOnTimeout([timer, path, title] {
        auto* panel = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!panel)
            return;
        timer->deleteLater();
        if (title)
            *title = panel->windowTitle();
        if (path.isEmpty()) {
            panel->reject();
            return;
        }
        // As typed: selectFile() does nothing while the name's field has the focus.
        panel->findChild<QLineEdit*>("fileNameEdit")->setText(path);
        static_cast<QDialog*>(panel)->accept();
    });
    timer->start(20);
}

} // namespace sonotrace
