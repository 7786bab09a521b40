#include "app/Preferences.h"

#include "platform/Numbers.h"
#include "widgets/NumberText.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <QStringList>
#include <QWidget>

namespace sonotrace {

namespace {

constexpr int kGripHeight = 20; // of a title bar, to be within reach on some screen

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
           QStringLiteral("/Sonotrace/Sonotrace.conf");
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

bool Preferences::booleanValue(const QString& key) const {
    return integerValue(key) != 0;
}

void Preferences::setFloat(const QString& key, double value) {
    store_.setValue(key, textFromNumber(static_cast<float>(value)));
}

void Preferences::setDouble(const QString& key, double value) {
    store_.setValue(key, textFromNumber(value));
}

void Preferences::setInteger(const QString& key, std::int32_t value) {
    store_.setValue(key, value);
}

void Preferences::restoreFrame(QWidget& window, const QString& key) const {
    const QStringList numbers = store_.value(key).toString().split(u' ');
    if (numbers.size() != 4)
        return;
    const QRect frame(numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt(), numbers[3].toInt());
    if (!frame.isValid())
        return;
    window.resize(frame.size().boundedTo(QGuiApplication::primaryScreen()->virtualSize()));
    if (isWithinReach(frame))
        window.move(frame.topLeft());
}

void Preferences::setFrame(const QWidget& window, const QString& key) {
    const QSize size = window.isMaximized() ? window.normalGeometry().size() : window.size();
    const QPoint corner = window.isMaximized() ? window.normalGeometry().topLeft() : window.pos();
    store_.setValue(
        key,
        QStringLiteral("%1 %2 %3 %4").arg(corner.x()).arg(corner.y()).arg(size.width()).arg(size.height()));
}

bool Preferences::synchronise() {
    store_.sync();
    return store_.status() == QSettings::NoError;
}

} // namespace sonotrace
