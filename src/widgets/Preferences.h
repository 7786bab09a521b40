#pragma once

#include <QRect>
#include <QSettings>
#include <QString>

class QWidget;

namespace sonotrace {

/// The user's preferences: one plain text file of keys and numbers. A missing or unreadable value is 0. The
/// file is replaced as a whole whenever it is written, so that a crash never leaves half of one. Window
/// thread.
class Preferences {
public:
    /// `path`: the file; the default is Sonotrace/Sonotrace.conf in the user's configuration folder.
    explicit Preferences(const QString& path = defaultPath());

    static QString defaultPath();

    float floatValue(const QString& key) const;
    double doubleValue(const QString& key) const;
    std::int32_t integerValue(const QString& key) const;

    void setFloat(const QString& key, double value); ///< narrowed to single precision
    void setDouble(const QString& key, double value);
    void setInteger(const QString& key, std::int32_t value);

    /// Window frames are kept as "x y width height". Restoring leaves the frame alone when the key holds
    /// nothing sensible or lies off every screen.
    void restoreFrame(QWidget& window, const QString& key) const;
    void setFrame(const QWidget& window, const QString& key);

    /// Writes what has changed to the file. False when it cannot be written.
    bool synchronise();

private:
    QRect frame(const QString& key) const;

    QSettings store_;
};

} // namespace sonotrace
