#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

namespace sonotrace {

/// Two programs on one file of preferences would overwrite each other's. So a second start hands over to the
/// program that runs already, through a socket in the user's runtime folder that goes by the file's path.
/// Window thread.
class FirstInstance : public QObject {
    Q_OBJECT

public:
    enum class Role {
        First,  ///< nobody else runs; this one listens from now on
        Second, ///< the other has taken over: this one is to end
        Beside, ///< another one is there and does not answer
    };

    /// What the second start wants.
    struct Request {
        QString settings; ///< absolute path of a settings file to open, or empty
        QString token;    ///< the desktop's permission to take the focus, or empty
    };

    explicit FirstInstance(const QString& preferencesPath);

    /// Finds out, which takes a second where the other one does not answer. Once.
    Role takeRole(const Request& request);

Q_SIGNALS:
    /// Another start wants this program's window.
    void wanted(const Request& request);

private:
    Role ask(const Request& request) const;
    void serve();
    void hear(QLocalSocket& peer);

    const QString path_; ///< of the socket; empty where there is no place for one
    QLocalServer server_;
    int peers_ = 0; ///< that are being served
};

} // namespace sonotrace
