#include "widgets/Preferences.h"

#include "base/Numbers.h"
#include "widgets/NumberText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSaveFile>
#include <QScreen>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>
#include <QWidget>

#include <algorithm>
#include <limits>

namespace sonotrace {

namespace {

constexpr int kFarAway = 1'000'000; // beyond any screen, and safe to add up
constexpr qint64 kLargestFile = 1 << 20;
constexpr int kGripHeight = 20;     // of a title bar, to be within reach on some screen
constexpr int kTitleBarHeight = 40; // at most, as desktops have them

bool isWithinReach(const QRect& frame) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect reachable = screen->availableGeometry();
        if (reachable.intersects(QRect(frame.x(), frame.y(), frame.width(), kGripHeight)))
            return true;
    }
    return false;
}

/// What is larger than its screen could neither be seen as a whole nor be made smaller with the mouse.
void fitScreen(QWidget& window) {
    const QScreen* screen = QGuiApplication::screenAt(window.pos());
    screen = screen ? screen : window.screen();
    const QRect room = screen->availableGeometry().adjusted(0, 0, 0, -kTitleBarHeight);
    const QSize fitting = window.size().boundedTo(room.size());
    if (fitting == window.size())
        return;
    window.resize(fitting);
    const QPoint last = room.bottomRight() - QPoint(fitting.width() - 1, fitting.height() - 1);
    window.move(std::clamp(window.x(), room.left(), last.x()), std::clamp(window.y(), room.top(), last.y()));
}

} // namespace

Preferences::Preferences(const QString& path) : path_(path), values_(read().value_or(Values())) {}

QString Preferences::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/Sonotrace/Sonotrace.conf";
}

double Preferences::doubleValue(const QString& key) const {
    return numberFromText(values_.value(key));
}

float Preferences::floatValue(const QString& key) const {
    return static_cast<float>(doubleValue(key));
}

std::int32_t Preferences::integerValue(const QString& key) const {
    return truncateToInt32(doubleValue(key));
}

QString Preferences::path(const QString& key) const {
    return QUrl(values_.value(key), QUrl::StrictMode).toLocalFile();
}

void Preferences::setFloat(const QString& key, double value) {
    // What no float can hold comes back as the largest one: the text of an infinity would be read as 0.
    constexpr double kMost = std::numeric_limits<float>::max();
    set(key, textFromNumber(static_cast<float>(std::clamp(value, -kMost, kMost))));
}

void Preferences::setDouble(const QString& key, double value) {
    set(key, textFromNumber(value));
}

void Preferences::setInteger(const QString& key, std::int32_t value) {
    set(key, QString::number(value));
}

void Preferences::setPath(const QString& key, const QString& path) {
    // A name may hold what ends or trims a line.
    set(key, QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
}

QRect Preferences::frame(const QString& key) const {
    const QStringList numbers = values_.value(key).split(u' ');
    if (numbers.size() != 4)
        return {};
    const auto number = [&](int i) { return std::clamp(numbers[i].toInt(), -kFarAway, kFarAway); };
    return {number(0), number(1), number(2), number(3)};
}

void Preferences::restoreFrame(QWidget& window, const QString& key) const {
    const QRect stored = frame(key);
    if (stored.isValid())
        window.resize(stored.size());
    if (stored.isValid() && isWithinReach(stored))
        window.move(stored.topLeft());
    // What was seen as a whole there, on several screens maybe, may be so again.
    if (!stored.isValid() || !window.screen()->availableVirtualGeometry().contains(stored))
        fitScreen(window);
}

void Preferences::setFrame(const QWidget& window, const QString& key) {
    const QSize size = window.isMaximized() ? window.normalGeometry().size() : window.size();
    QPoint corner = window.isMaximized() ? window.normalGeometry().topLeft() : window.pos();
    // Wayland does not say where a window is; what another session has stored is worth keeping.
    if (QGuiApplication::platformName().startsWith("wayland"))
        corner = frame(key).topLeft();
    set(key, QString("%1 %2 %3 %4").arg(corner.x()).arg(corner.y()).arg(size.width()).arg(size.height()));
}

void Preferences::set(const QString& key, const QString& value) {
    values_[key] = value;
    changed_[key] = value;
}

bool Preferences::synchronise() {
    if (changed_.isEmpty())
        return true;
    // Another program of ours may have written meanwhile.
    std::optional<Values> stored = read();
    if (!stored)
        return false;
    stored->insert(changed_);
    if (!write(*stored))
        return false;
    values_ = *stored;
    changed_.clear();
    return true;
}

std::optional<Preferences::Values> Preferences::read() const {
    const QFileInfo info(path_);
    if (!info.exists())
        return Values();
    QFile file(path_);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) // opening a pipe would wait for its writer
        return std::nullopt;
    Values values;
    const QByteArray text = file.read(kLargestFile);
    bool ours = true;
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith('['))
            ours = line.startsWith("[General]");
        const qsizetype equals = line.indexOf('=');
        if (ours && equals > 0)
            values[QString::fromUtf8(line.first(equals)).trimmed()] =
                QString::fromUtf8(line.sliced(equals + 1)).trimmed();
    }
    return values;
}

bool Preferences::write(const Values& values) const {
    QByteArray text = "[General]\n";
    for (const auto& [key, value] : values.asKeyValueRange())
        text += key.toUtf8() + '=' + value.toUtf8() + '\n';
    QDir().mkpath(QFileInfo(path_).path());
    QSaveFile file(path_);
    // Flushed on its own: what fails as late as in commit() is not noticed there, and empties the file.
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush() &&
           file.commit();
}

} // namespace sonotrace
