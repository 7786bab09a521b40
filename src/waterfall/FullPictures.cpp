#include "waterfall/FullPictures.h"

#include "base/SampleRate.h"
#include "widgets/FilePanels.h"
#include "widgets/Preferences.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace sonotrace {

namespace {

constexpr FileKind kFullPictures{"WATERFALL_pictureFolder", QStandardPaths::PicturesLocation, "", ""};

/// A new name in a folder, from the clock.
QString newPicturePath(const QDir& folder) {
    const QString stem = QDateTime::currentDateTime().toString(kPictureTimeName);
    QString path = folder.filePath(stem + ".png");
    for (int count = 2; QFileInfo::exists(path); ++count)
        path = folder.filePath(QString("%1-%2.png").arg(stem).arg(count));
    return path;
}

} // namespace

QString FullPictures::folder() const {
    const QString chosen = preferences_.path(kFullPictures.folderKey);
    return chosen.isEmpty() ? QStandardPaths::writableLocation(kFullPictures.firstFolder) : chosen;
}

bool FullPictures::chooseFolder(QWidget& window) {
    if (!askForFolder(&window, preferences_, kFullPictures, "Choose folder for full pictures"))
        return false;
    trouble_.clear();
    return true;
}

QString FullPictures::saveWhenFull(bool asked, const std::function<QByteArray()>& png) {
    const ColumnNumber scrolled = image_.scrolled();
    const double slowSamples = parameters_.slowSamples();
    if (!asked || slowSamples == 0.0) {
        savedUpTo_ = scrolled;
        trouble_.clear();
        return {};
    }
    // Several short columns may come at once: room for those of half a second.
    const auto width = static_cast<ColumnNumber>(image_.bounds().width);
    const auto spare = static_cast<ColumnNumber>(kSampleRate / 2.0 / slowSamples);
    if (width == 0 || scrolled - savedUpTo_ < width - spare)
        return {};
    savedUpTo_ = scrolled;
    const QString path = newPicturePath(folder());
    QString said = writeFile(path, png(), "Picture saved to %1");
    trouble_ = QFileInfo::exists(path) ? QString() : said;
    return said;
}

} // namespace sonotrace
