#pragma once

#include <QStandardPaths>
#include <QString>

#include <optional>

class QByteArray;
class QWidget;

namespace sonotrace {

class Preferences;

/// What a file panel is for. Each kind has a folder of its own, where its panels begin: the one that was used
/// last, which the preferences keep.
struct FileKind {
    const char* folderKey;
    QStandardPaths::StandardLocation firstFolder; ///< while none was used
    const char* filter;                           ///< may be empty
    const char* suffix;                           ///< given to a name typed without one; may be empty
};

inline constexpr FileKind kSettingsFiles{"FILES_settingsFolder", QStandardPaths::DocumentsLocation, "", ""};
inline constexpr FileKind kRecordings{"FILES_recordingFolder", QStandardPaths::MusicLocation,
                                      "WAV files (*.wav *.WAV)", "wav"};
inline constexpr FileKind kCorrections{"FILES_correctionFolder", QStandardPaths::DocumentsLocation, "", ""};
inline constexpr FileKind kPictures{"FILES_pictureFolder", QStandardPaths::PicturesLocation,
                                    "PNG pictures (*.png)", "png"};
inline constexpr FileKind kReportPages{"FILES_pictureFolder", QStandardPaths::PicturesLocation,
                                       "PNG pictures (*.png);;PDF pages (*.pdf)", "png"};
inline constexpr FileKind kTables{"FILES_tableFolder", QStandardPaths::DocumentsLocation,
                                  "Comma-separated values (*.csv)", "csv"};

/// Asks the user for files. Nothing when the user cancels. `message` is the panel's title. A file to save is
/// offered a name that tells when it was made.
std::optional<QString> askForFileToOpen(QWidget* parent, Preferences& preferences, const FileKind& kind,
                                        const QString& message);
std::optional<QString> askForFileToSave(QWidget* parent, Preferences& preferences, const FileKind& kind,
                                        const QString& message);

/// Asks for the folder of a kind itself.
std::optional<QString> askForFolder(QWidget* parent, Preferences& preferences, const FileKind& kind,
                                    const QString& message);

/// Replaces a file as a whole. Gives what to tell the user: `done` with the file's path in it, or what went
/// wrong.
QString writeFile(const QString& path, const QByteArray& content, const QString& done);

} // namespace sonotrace
