#pragma once

#include <QProcess>
#include <QStringList>

namespace sonotrace {

/// The program itself, started as a user starts it but without a display. Its log and diagnostics are kept.
class Program {
public:
    explicit Program(const QStringList& arguments = {}) {
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.start(SONOTRACE_PROGRAM, arguments);
        process_.waitForStarted();
    }
    ~Program() {
        process_.kill();
        process_.waitForFinished();
    }

    /// Asks it to quit as the end of a session does. True when it is gone, with status 0, within two seconds.
    bool quit() {
        process_.terminate();
        return process_.waitForFinished(2000) && process_.exitStatus() == QProcess::NormalExit &&
               process_.exitCode() == 0;
    }

    QByteArray output() { return process_.readAll(); }

private:
    QProcess process_;
};

} // namespace sonotrace
