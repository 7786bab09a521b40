#pragma once

#include <QMap>
#include <QRect>
#include <QString>

#include <optional>

class QWidget;

namespace sonotrace {

/// The user's preferences: one plain text file of keys and numbers. A missing or unreadable value is 0. The
/// file is replaced as a whole whenever it is written, so that neither a crash nor a full disk leaves half of
/// one, and only keys that were set are changed in it. Nobody is waited for: not for a lock that somebody has
/// left behind, nor for what stands in the file's place and is none. Window thread.
class Preferences {
public:
    /// `path`: the file; the default is Sonotrace/Sonotrace.conf in the user's configuration folder.
    explicit Preferences(const QString& path = defaultPath());

    static QString defaultPath();

    float floatValue(const QString& key) const;
    double doubleValue(const QString& key) const;
    std::int32_t integerValue(const QString& key) const;
    QString path(const QString& key) const; ///< of a file or folder; empty when there is none

    void setFloat(const QString& key, double value); ///< narrowed to single precision
    void setDouble(const QString& key, double value);
    void setInteger(const QString& key, std::int32_t value);
    void setPath(const QString& key, const QString& path);

    /// Window frames are kept as "x y width height". Restoring leaves the frame alone when the key holds
    /// nothing sensible or lies off every screen. In any case the window then fits its screen.
    void restoreFrame(QWidget& window, const QString& key) const;
    void setFrame(const QWidget& window, const QString& key);

    /// Writes what has changed to the file. False when it cannot be written; then the file is as it was.
    bool synchronise();

private:
    using Values = QMap<QString, QString>;

    /// What the file holds; nothing when there is something that cannot be read.
    std::optional<Values> read() const;
    bool write(const Values& values) const;
    void set(const QString& key, const QString& value);
    QRect frame(const QString& key) const;

    const QString path_;
    Values values_;
    Values changed_; ///< since they were last written
};

} // namespace sonotrace
