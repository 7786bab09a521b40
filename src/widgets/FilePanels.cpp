#include "widgets/FilePanels.h"

#include <QByteArray>
#include <QFileDialog>
#include <QFileInfo>
#include <QSaveFile>

namespace sonotrace {

namespace {

std::optional<QString> run(QFileDialog& panel) {
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty())
        return std::nullopt;
    return panel.selectedFiles().first();
}

} // namespace

std::optional<QString> askForFileToOpen(QWidget* parent, const QString& message) {
    QFileDialog panel(parent, message);
    panel.setAcceptMode(QFileDialog::AcceptOpen);
    panel.setFileMode(QFileDialog::ExistingFile);
    return run(panel);
}

std::optional<QString> askForFileToSave(QWidget* parent, const QString& message, const QString& filter,
                                        const QString& suffix) {
    QFileDialog panel(parent, message);
    panel.setAcceptMode(QFileDialog::AcceptSave);
    panel.setFileMode(QFileDialog::AnyFile);
    if (!filter.isEmpty())
        panel.setNameFilter(filter);
    panel.setDefaultSuffix(suffix);
    return run(panel);
}

QString writeFile(const QString& path, const QByteArray& content, const QString& done) {
    const QFileInfo target(path);
    const QString name = target.fileName();
    if (target.exists() && !target.isFile()) // a pipe or a device would be replaced
        return QString("%1 cannot be written: it is not a file").arg(name);
    QSaveFile file(path);
    // Flushed on its own: what fails as late as in commit() is not noticed there, and empties the file.
    const bool written = !content.isEmpty() && file.open(QIODevice::WriteOnly) &&
                         file.write(content) == content.size() && file.flush() && file.commit();
    return written ? done.arg(name) : QString("%1 cannot be written: %2").arg(name, file.errorString());
}

} // namespace sonotrace
