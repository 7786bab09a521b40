#pragma once

#include <QString>

#include <optional>

class QByteArray;
class QWidget;

namespace sonotrace {

/// Asks the user for files. Nothing when the user cancels. `message` is the panel's title.
std::optional<QString> askForFileToOpen(QWidget* parent, const QString& message);

/// `filter` and `suffix` may be empty; a name typed without an extension gets the suffix.
std::optional<QString> askForFileToSave(QWidget* parent, const QString& message, const QString& filter = {},
                                        const QString& suffix = {});

/// Replaces a file as a whole. Gives what to tell the user: `done` with the file's name in it, or what went
/// wrong.
QString writeFile(const QString& path, const QByteArray& content, const QString& done);

} // namespace sonotrace
