#include "generator/SettingsDocument.h"

#include "base/SystemLog.h"
#include "generator/GeneratorPanel.h"
#include "generator/SettingsFile.h"
#include "widgets/FilePanels.h"

#include <QFile>
#include <QFileInfo>

namespace sonotrace {

namespace {
constexpr auto kFileBytes = static_cast<qint64>(kSettingsFileBytes);
}

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

void showSettingsBlock(GeneratorPanel& panel, const QByteArray& block) {
    const SettingsOfAll all = decodeSettingsFile(std::as_bytes(std::span(block)));
    for (int slot = 0; slot < kGeneratorCount; ++slot)
        panel.setSlot(slot, all[static_cast<std::size_t>(slot)]);
}

QString openSettingsDocument(GeneratorPanel& panel, const QString& path) {
    systemLog("%s", qUtf8Printable(path));
    QFile file(path);
    const QFileInfo info(path);
    const bool opened = info.isFile() && file.open(QIODevice::ReadOnly);
    const QByteArray block = opened ? file.read(kFileBytes) : QByteArray();
    systemLog("%d", static_cast<int>(opened ? file.size() : 0));
    showSettingsBlock(panel, block);
    if (!opened)
        return QString("%1 cannot be read: %2")
            .arg(path, info.isFile() ? file.errorString() : "no such file");
    if (block.size() < kFileBytes)
        return QString("%1 is too short for a settings file: the rest counts as zero (%2 bytes of %3)")
            .arg(path)
            .arg(block.size())
            .arg(kFileBytes);
    QString done = QString("Settings opened from %1").arg(path);
    if (file.size() > kFileBytes)
        done += QString(" (%1 bytes too long: perhaps no settings file)").arg(file.size() - kFileBytes);
    return done;
}

} // namespace sonotrace
