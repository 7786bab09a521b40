#pragma once

#include <QString>

namespace sonotrace {

class GeneratorPanel;

/// Settings files as the user meets them. Both say in a sentence what came of it. Window thread.
QString saveSettingsDocument(const GeneratorPanel& panel, const QString& path);

/// What cannot be read counts as zeros.
QString openSettingsDocument(GeneratorPanel& panel, const QString& path);

} // namespace sonotrace
