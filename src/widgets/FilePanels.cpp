#include "widgets/FilePanels.h"

#include "widgets/Preferences.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>

namespace sonotrace {

namespace {

QString folderOf(const FileKind& kind, const Preferences& preferences) {
    for (const QString& folder :
         {preferences.path(kind.folderKey), QStandardPaths::writableLocation(kind.firstFolder)}) {
        if (!folder.isEmpty() && QFileInfo(folder).isDir())
            return folder;
    }
    return QDir::homePath();
}

QString newName(const FileKind& kind) {
    // No colons: the file may go to a disk that has none in names.
    const QString stem = QDateTime::currentDateTime().toString("'Sonotrace 'yyyy-MM-dd HH-mm-ss");
    return *kind.suffix ? stem + '.' + kind.suffix : stem;
}

std::optional<QString> run(QFileDialog& panel, Preferences& preferences, const FileKind& kind) {
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty())
        return std::nullopt;
    const QString path = panel.selectedFiles().first();
    preferences.setPath(kind.folderKey, QFileInfo(path).absolutePath());
    return path;
}

} // namespace

std::optional<QString> askForFileToOpen(QWidget* parent, Preferences& preferences, const FileKind& kind,
                                        const QString& message) {
    QFileDialog panel(parent, message, folderOf(kind, preferences));
    panel.setAcceptMode(QFileDialog::AcceptOpen);
    panel.setFileMode(QFileDialog::ExistingFile);
    return run(panel, preferences, kind);
}

std::optional<QString> askForFileToSave(QWidget* parent, Preferences& preferences, const FileKind& kind,
                                        const QString& message) {
    QFileDialog panel(parent, message, folderOf(kind, preferences), kind.filter);
    panel.setAcceptMode(QFileDialog::AcceptSave);
    panel.setFileMode(QFileDialog::AnyFile);
    panel.setDefaultSuffix(kind.suffix);
    // A name that is typed without a suffix gets the one of the kind of file that is chosen beside it.
    QObject::connect(&panel, &QFileDialog::filterSelected, &panel, [&panel](const QString& filter) {
        const QString pattern = filter.section("*.", 1, 1);
        panel.setDefaultSuffix(pattern.section(QRegularExpression("[^a-zA-Z0-9]"), 0, 0));
    });
    panel.selectFile(newName(kind));
    return run(panel, preferences, kind);
}

std::optional<QString> askForFolder(QWidget* parent, Preferences& preferences, const FileKind& kind,
                                    const QString& message) {
    QFileDialog panel(parent, message, folderOf(kind, preferences));
    panel.setFileMode(QFileDialog::Directory);
    panel.setOption(QFileDialog::ShowDirsOnly);
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty())
        return std::nullopt;
    const QString folder = QDir(panel.selectedFiles().first()).absolutePath();
    preferences.setPath(kind.folderKey, folder);
    return folder;
}

QString writeFile(const QString& path, const QByteArray& content, const QString& done) {
    const QFileInfo target(path);
    if (target.exists() && !target.isFile()) // a pipe or a device would be replaced
        return QString("%1 cannot be written: it is not a file").arg(path);
    QSaveFile file(path);
    // Flushed on its own: what fails as late as in commit() is not noticed there, and empties the file.
    const auto takes = [&file, &content] { // a full disk takes a part, and says why with the next one
        qint64 position = 0;
        for (qint64 taken = 1; position < content.size() && taken > 0; position += std::max<qint64>(taken, 0))
            taken = file.write(content.constData() + position, content.size() - position);
        return position == content.size() && file.flush();
    };
    const bool written = !content.isEmpty() && file.open(QIODevice::WriteOnly) && takes() && file.commit();
    return written ? done.arg(path) : QString("%1 cannot be written: %2").arg(path, file.errorString());
}

} // namespace sonotrace
