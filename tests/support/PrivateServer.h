#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>

namespace sonotrace {

/// Waits until `condition` holds, at most `seconds`, looking every few milliseconds.
bool waitFor(const std::function<bool()>& condition, double seconds = 10.0);

/// A sound server of the test's own on a socket of its own, with two null sinks, "speaker" and "line"
/// (speaker is the default). PULSE_SERVER and the folders of configuration point to it while it lives.
class PrivateServer {
public:
    enum class Kind { PulseAudio, PipeWire };

    /// Starts the server and waits until it answers; throws when it does not.
    explicit PrivateServer(Kind kind = Kind::PulseAudio);
    ~PrivateServer();
    PrivateServer(const PrivateServer&) = delete;
    PrivateServer& operator=(const PrivateServer&) = delete;

    void start();
    void stop();
    void freeze(); ///< stops answering
    void thaw();

    /// What the server's control program prints for these arguments.
    std::string pactl(const std::string& arguments) const;

    /// A folder that goes with the server.
    const std::filesystem::path& folder() const { return folder_; }

private:
    const Kind kind_;
    const std::filesystem::path folder_;
    pid_t process_ = 0;
};

} // namespace sonotrace
