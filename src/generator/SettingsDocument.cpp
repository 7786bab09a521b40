#include "generator/SettingsDocument.h"

#include "base/SystemLog.h"
#include "generator/GeneratorPanel.h"
#include "generator/SettingsFile.h"
#include "widgets/FilePanels.h"

#include <QFile>
#include <QFileInfo>

namespace sonotrace {

QByteArray settingsBlock(const GeneratorPanel& panel) {
    SettingsOfAll all{};
    for (int slot = 0; slot < kGeneratorCount; ++slot)
        all[static_cast<std::size_t>(slot)] = panel.slotSettings(slot);
    const auto block = encodeSettingsFile(all);
    return {reinterpret_cast<const char*>(block.data()), static_cast<qsizetype>(block.size())};
}

QString saveSettingsDocument(const QByteArray& block, const QString& path) {
    return writeFile(path, block, "Settings saved to %1");
}

QString openSettingsDocument(GeneratorPanel& panel, const QString& path) {
    systemLog("%s", qUtf8Printable(path));
    QFile file(path);
    const QFileInfo info(path);
    const bool opened = info.isFile() && file.open(QIODevice::ReadOnly);
    const QByteArray block = opened ? file.read(static_cast<qint64>(kSettingsFileBytes)) : QByteArray();
    systemLog("%d", static_cast<int>(opened ? file.size() : 0));
    const auto all = decodeSettingsFile(std::as_bytes(std::span(block)));
    for (int slot = 0; slot < kGeneratorCount; ++slot)
        panel.setSlot(slot, all[static_cast<std::size_t>(slot)]);
    if (!opened)
        return QString("%1 cannot be read: %2")
            .arg(info.fileName(), info.isFile() ? file.errorString() : "no such file");
    if (block.size() < static_cast<qint64>(kSettingsFileBytes))
        return QString("%1 is too short for a settings file: the rest counts as zero").arg(info.fileName());
    return QString("Settings opened from %1").arg(info.fileName());
}

} // namespace sonotrace
