#pragma once

#include <QByteArray>
#include <QString>

namespace sonotrace {

class GeneratorPanel;

// Settings files as the user meets them. Window thread.

/// The bytes of a file with the panel's settings as they are now.
QByteArray settingsBlock(const GeneratorPanel& panel);

/// Puts such bytes into the panel and the bank, unclamped. What is missing counts as zeros.
void showSettingsBlock(GeneratorPanel& panel, const QByteArray& block);

/// Both say in a sentence what came of it.
QString saveSettingsDocument(const QByteArray& block, const QString& path);

/// What cannot be read counts as zeros.
QString openSettingsDocument(GeneratorPanel& panel, const QString& path);

} // namespace sonotrace
