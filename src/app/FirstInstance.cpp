#include "app/FirstInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>
#include <QTimer>

namespace sonotrace {

namespace {

constexpr int kPatience = 1000;          // ms
constexpr qint64 kLongestLine = 1 << 16; // bytes: names of files are a few thousand at most
constexpr int kMostPeers = 8;

// The one that listens speaks first: whoever hears nothing and goes away has asked for nothing.
constexpr auto kGreeting = "sonotrace 1\n";
constexpr auto kDone = "done\n";

QString socketPath(const QString& preferencesPath) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        return {};
    const QByteArray name = QFileInfo(preferencesPath).absoluteFilePath().toUtf8();
    const QByteArray hash = QCryptographicHash::hash(name, QCryptographicHash::Sha256).toHex().first(16);
    return folder + "/sonotrace-" + hash;
}

QByteArray encoded(const QString& text) {
    return text.toUtf8().toPercentEncoding();
}

QString decoded(const QByteArray& text) {
    return QString::fromUtf8(QByteArray::fromPercentEncoding(text));
}

QByteArray nextLine(QLocalSocket& socket, const QDeadlineTimer& deadline) {
    while (!socket.canReadLine() && socket.bytesAvailable() < kLongestLine) {
        if (!socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            break;
    }
    return socket.readLine(kLongestLine);
}

} // namespace

FirstInstance::FirstInstance(const QString& preferencesPath) : path_(socketPath(preferencesPath)) {
    connect(&server_, &QLocalServer::newConnection, this, &FirstInstance::serve);
}

FirstInstance::Role FirstInstance::takeRole(const Request& request) {
    if (path_.isEmpty())
        return Role::First;
    QLockFile lock(path_ + ".lock"); // of two that start at once one is the first
    lock.setStaleLockTime(0);
    lock.tryLock(kPatience);
    const Role role = ask(request);
    if (role == Role::First) {
        server_.setSocketOptions(QLocalServer::UserAccessOption);
        QLocalServer::removeServer(path_); // a crash leaves it
        server_.listen(path_);
    }
    return role;
}

FirstInstance::Role FirstInstance::ask(const Request& request) const {
    const QDeadlineTimer deadline(kPatience);
    QLocalSocket socket;
    socket.setReadBufferSize(kLongestLine);
    socket.connectToServer(path_);
    if (!socket.waitForConnected(kPatience))
        return socket.error() == QLocalSocket::SocketTimeoutError ? Role::Beside : Role::First;
    if (nextLine(socket, deadline) != kGreeting) {
        const bool ended = socket.state() != QLocalSocket::ConnectedState && socket.bytesAvailable() == 0;
        return ended ? Role::First : Role::Beside;
    }
    socket.write(encoded(request.settings) + ' ' + encoded(request.token) + '\n');
    return nextLine(socket, deadline) == kDone ? Role::Second : Role::Beside;
}

/// A few at a time, so that nobody takes all descriptors; the others wait until it is their turn.
void FirstInstance::serve() {
    while (peers_ < kMostPeers && server_.hasPendingConnections()) {
        ++peers_;
        QLocalSocket* const peer = server_.nextPendingConnection();
        connect(peer, &QLocalSocket::disconnected, peer, &QObject::deleteLater);
        const auto next = [this] {
            --peers_;
            serve();
        };
        connect(peer, &QObject::destroyed, this, next, Qt::QueuedConnection);
        connect(peer, &QLocalSocket::readyRead, this, [this, peer] { hear(*peer); });
        QTimer::singleShot(kPatience, peer, [peer] { peer->abort(); });
        peer->setReadBufferSize(kLongestLine);
        peer->write(kGreeting);
    }
}

void FirstInstance::hear(QLocalSocket& peer) {
    if (!peer.canReadLine() && peer.bytesAvailable() < kLongestLine)
        return;
    const QByteArrayList words = peer.readLine(kLongestLine).split(' ');
    if (words.size() != 2 || !words.last().endsWith('\n')) {
        peer.abort();
        return;
    }
    disconnect(&peer, &QLocalSocket::readyRead, this, nullptr);
    peer.write(kDone);
    peer.disconnectFromServer();
    const Request request{decoded(words.first()), decoded(words.last().trimmed())};
    Q_EMIT wanted(request);
}

} // namespace sonotrace
