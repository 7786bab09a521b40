#include "app/Resources.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

namespace sonotrace {

QString resourcePath(const QString& name) {
    // Relative to the binary, so that an installed tree can be moved. First its layout, then the build
    // tree's.
    const QStringList folders = {"../share/sonotrace", "../share/icons/hicolor/256x256/apps", "../docs",
                                 "../packaging"};
    for (const QString& folder : folders) {
        const QFileInfo file(QDir(QCoreApplication::applicationDirPath()), folder + u'/' + name);
        if (file.isFile())
            return QDir::cleanPath(file.absoluteFilePath());
    }
    return {};
}

} // namespace sonotrace
