#pragma once

#include "platform/pulse/PulseSoundSystem.h"
#include "support/PrivateServer.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <span>

namespace sonotrace {

/// A test that runs on a private server of each kind.
class OnEachServer : public testing::TestWithParam<PrivateServer::Kind> {
protected:
    OnEachServer() : server_(GetParam()) {}

    QString path(const char* name) const {
        return QString::fromStdString((server_.folder() / name).string());
    }

    PrivateServer server_;
};

inline const auto kServers = testing::Values(PrivateServer::Kind::PulseAudio, PrivateServer::Kind::PipeWire);

inline std::string serverName(const testing::TestParamInfo<PrivateServer::Kind>& kind) {
    return kind.param == PrivateServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire";
}

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
        return ends();
    }

    /// The same without being asked.
    bool ends() {
        return process_.waitForFinished(2000) && process_.exitStatus() == QProcess::NormalExit &&
               process_.exitCode() == 0;
    }

    void signal(int number) { ::kill(static_cast<pid_t>(process_.processId()), number); }

    /// What it has written so far.
    QByteArray output() {
        process_.waitForReadyRead(1);
        return output_ += process_.readAll();
    }

private:
    QProcess process_;
    QByteArray output_;
};

/// What a device's listeners hear, recorded by the sound server's own tool.
class Monitor {
public:
    /// `file` is where the samples go.
    Monitor(const QString& source, const QString& file) : file_(file) {
        process_.start("parec", {"--device=" + source, "--raw", "--format=s16le", "--rate=44100",
                                 "--channels=2", "--latency-msec=50", file});
        process_.waitForStarted();
    }
    ~Monitor() {
        process_.terminate();
        process_.waitForFinished();
    }

    std::vector<std::int16_t> heard() const {
        QFile file(file_);
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        std::vector<std::int16_t> samples(static_cast<std::size_t>(bytes.size()) / 4 * 2);
        std::copy_n(bytes.constData(), samples.size() * 2, reinterpret_cast<char*>(samples.data()));
        return samples;
    }

    /// At least so many frames are not silence.
    std::ptrdiff_t soundingFrames() const {
        const auto samples = heard();
        return (std::ssize(samples) - std::ranges::count(samples, 0)) / 2;
    }

private:
    const QString file_;
    QProcess process_;
};

/// Length of the longest piece of `signal`, from its beginning, that stands somewhere in `heard`. Both are
/// interleaved.
inline std::size_t longestMatch(std::span<const std::int16_t> signal, std::span<const std::int16_t> heard) {
    std::size_t longest = 0;
    for (std::size_t at = 0; at < heard.size(); at += 2) {
        const auto end = std::ranges::mismatch(signal, heard.subspan(at)).in1;
        longest = std::max(longest, static_cast<std::size_t>(end - signal.begin()));
    }
    return longest;
}

} // namespace sonotrace
