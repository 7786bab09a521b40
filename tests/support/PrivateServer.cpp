#include "support/PrivateServer.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace sonotrace {

namespace {

std::filesystem::path makeFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sonotrace-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder");
    return pattern;
}

} // namespace

bool waitFor(const std::function<bool()>& condition, double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

PrivateServer::PrivateServer(Kind kind) : kind_(kind), folder_(makeFolder()) {
    for (const char* name :
         {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "PULSE_RUNTIME_PATH"}) {
        const auto path = folder_ / name;
        std::filesystem::create_directories(path);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        setenv(name, path.c_str(), 1);
    }
    const auto socket =
        kind == Kind::PulseAudio ? folder_ / "socket" : folder_ / "PULSE_RUNTIME_PATH" / "native";
    setenv("PULSE_SERVER", ("unix:" + socket.string()).c_str(), 1);
    start();
}

PrivateServer::~PrivateServer() {
    stop();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void PrivateServer::start() {
    const char* const kind = kind_ == Kind::PulseAudio ? "pulseaudio" : "pipewire";
    process_ = fork();
    if (process_ == 0) {
        setpgid(0, 0); // signals go to the server with all its children
        const int log = open((folder_ / "server.log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(log, STDOUT_FILENO);
        dup2(log, STDERR_FILENO);
        execl(SONOTRACE_PRIVATE_SERVER, SONOTRACE_PRIVATE_SERVER, kind, nullptr);
        _exit(127);
    }
    setpgid(process_, process_);
    const auto isReady = [this] {
        return pactl("list short sinks").find("line") != std::string::npos &&
               pactl("get-default-source").find("speaker.monitor") == 0;
    };
    if (!waitFor(isReady, 20.0)) {
        stop();
        throw std::runtime_error("the sound server does not answer");
    }
}

void PrivateServer::stop() {
    if (process_ == 0)
        return;
    kill(-process_, SIGCONT);
    kill(-process_, SIGTERM);
    int status = 0;
    waitFor([this, &status] { return waitpid(process_, &status, WNOHANG) != 0; }, 5.0);
    kill(-process_, SIGKILL); // what is left
    waitpid(std::exchange(process_, 0), &status, 0);
    std::filesystem::remove(folder_ / "socket");
}

void PrivateServer::freeze() {
    kill(-process_, SIGSTOP);
}

void PrivateServer::thaw() {
    kill(-process_, SIGCONT);
}

std::string PrivateServer::pactl(const std::string& arguments) const {
    const std::string command = "timeout 5 pactl " + arguments + " 2>&1";
    const auto close = [](std::FILE* pipe) { pclose(pipe); };
    const std::unique_ptr<std::FILE, decltype(close)> pipe(popen(command.c_str(), "r"), close);
    std::string output;
    std::array<char, 4096> chunk;
    for (std::size_t count = 0; pipe && (count = fread(chunk.data(), 1, chunk.size(), pipe.get())) > 0;)
        output.append(chunk.data(), count);
    return output;
}

} // namespace sonotrace
