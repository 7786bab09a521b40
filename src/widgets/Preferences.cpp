#include "widgets/Preferences.h"

#include "base/Numbers.h"
#include "widgets/NumberText.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <QStringList>
#include <QWidget>

#include <algorithm>
#include <limits>

namespace sonotrace {

namespace {

constexpr int kFarAway = 1'000'000; // beyond any screen, and safe to add up
constexpr int kGripHeight = 20;     // of a title bar, to be within reach on some screen

bool isWithinReach(const QRect& frame) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect reachable = screen->availableGeometry();
        if (reachable.intersects(QRect(frame.x(), frame.y(), frame.width(), kGripHeight)))
            return true;
    }
    return false;
}

} // namespace

Preferences::Preferences(const QString& path) : store_(path, QSettings::IniFormat) {}

QString Preferences::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/Sonotrace/Sonotrace.conf";
}

double Preferences::doubleValue(const QString& key) const {
    return numberFromText(store_.value(key).toString());
}

float Preferences::floatValue(const QString& key) const {
    return static_cast<float>(doubleValue(key));
}

std::int32_t Preferences::integerValue(const QString& key) const {
    return truncateToInt32(doubleValue(key));
}

void Preferences::setFloat(const QString& key, double value) {
    // What no float can hold comes back as the largest one: the text of an infinity would be read as 0.
    constexpr double kMost = std::numeric_limits<float>::max();
    store_.setValue(key, textFromNumber(static_cast<float>(std::clamp(value, -kMost, kMost))));
}

void Preferences::setDouble(const QString& key, double value) {
    store_.setValue(key, textFromNumber(value));
}

void Preferences::setInteger(const QString& key, std::int32_t value) {
    store_.setValue(key, value);
}

QRect Preferences::frame(const QString& key) const {
    const QStringList numbers = store_.value(key).toString().split(u' ');
    if (numbers.size() != 4)
        return {};
    const auto number = [&](int i) { return std::clamp(numbers[i].toInt(), -kFarAway, kFarAway); };
    return {number(0), number(1), number(2), number(3)};
}

void Preferences::restoreFrame(QWidget& window, const QString& key) const {
    const QRect stored = frame(key);
    if (!stored.isValid())
        return;
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        window.resize(stored.size().boundedTo(screen->virtualSize()));
    if (isWithinReach(stored))
        window.move(stored.topLeft());
}

void Preferences::setFrame(const QWidget& window, const QString& key) {
    const QSize size = window.isMaximized() ? window.normalGeometry().size() : window.size();
    QPoint corner = window.isMaximized() ? window.normalGeometry().topLeft() : window.pos();
    // Wayland does not say where a window is; what another session has stored is worth keeping.
    if (QGuiApplication::platformName().startsWith("wayland"))
        corner = frame(key).topLeft();
    store_.setValue(
        key, QString("%1 %2 %3 %4").arg(corner.x()).arg(corner.y()).arg(size.width()).arg(size.height()));
}

bool Preferences::synchronise() {
    store_.sync();
    return store_.status() == QSettings::NoError;
}

} // namespace sonotrace
