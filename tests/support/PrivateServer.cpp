#include "support/PrivateServer.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace sonotrace {

namespace {

std::filesystem::path makeFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sonotrace-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder");
    return pattern;
}

constexpr const char* kSinks[] = {"speaker", "line"};

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
    if (kind_ == Kind::PulseAudio)
        startPulseAudio();
    else
        startPipeWire();
    if (!waitFor([this] { return pactl("list short sinks").find("line") != std::string::npos; }, 20.0)) {
        stop();
        throw std::runtime_error("the sound server does not answer");
    }
}

void PrivateServer::startPulseAudio() {
    const auto script = folder_ / "server.pa";
    std::ofstream file(script);
    file << "load-module module-native-protocol-unix socket=" << (folder_ / "socket").string()
         << " auth-anonymous=1\n";
    for (const char* sink : kSinks) {
        file << "load-module module-null-sink sink_name=" << sink
             << " rate=44100 format=s16le channels=2 sink_properties=device.description=" << sink << "\n";
    }
    file << "load-module module-rescue-streams\n";
    file.close();
    processes_.push_back(spawn({"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1",
                                "--use-pid-file=no", "-F", script.string()}));
}

void PrivateServer::startPipeWire() {
    const auto configure = [this](const char* folder, const char* file, const char* text) {
        const auto path = folder_ / "XDG_CONFIG_HOME" / folder;
        std::filesystem::create_directories(path);
        std::ofstream(path / file) << text;
    };
    // Its graph runs at 48 kHz by default, and resamples what comes at 44.1.
    configure("pipewire/pipewire.conf.d", "rate.conf",
              "context.properties = { default.clock.rate = 44100 }\n");
    // Its session manager's Bluetooth part needs a login manager, and takes it all down where there is none.
    configure("wireplumber/bluetooth.lua.d", "80-off.lua", "bluez_monitor.enabled = false\n");
    // Its session manager gives up when it comes before the socket.
    const std::string script =
        "pipewire & for i in $(seq 200); do [ -S \"$XDG_RUNTIME_DIR/pipewire-0\" ] && break; "
        "sleep 0.05; done; wireplumber & exec pipewire-pulse";
    processes_.push_back(spawn({"dbus-run-session", "--", "sh", "-c", script}));
    waitFor([this] { return pactl("info").find("Server Name") != std::string::npos; }, 20.0);
    for (const char* sink : kSinks) {
        pactl(std::string("load-module module-null-sink rate=44100 format=s16le channels=2 sink_name=") +
              sink + " sink_properties=device.description=" + sink);
    }
    pactl("set-default-sink speaker");
    pactl("set-default-source speaker.monitor");
}

pid_t PrivateServer::spawn(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const std::string log = folder_ / "server.log";
    const pid_t process = fork();
    if (process == 0) {
        setpgid(0, 0); // signals go to the server with all its children
        const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    setpgid(process, process);
    return process;
}

void PrivateServer::stop() {
    for (const pid_t process : processes_) {
        kill(-process, SIGCONT);
        kill(-process, SIGTERM);
        int status = 0;
        const auto gone = [process, &status] { return waitpid(process, &status, WNOHANG) != 0; };
        if (!waitFor(gone, 5.0)) {
            kill(-process, SIGKILL);
            waitpid(process, &status, 0);
        }
        kill(-process, SIGKILL); // whatever it left behind
    }
    processes_.clear();
    std::filesystem::remove(folder_ / "socket");
}

void PrivateServer::freeze() {
    for (const pid_t process : processes_)
        kill(-process, SIGSTOP);
}

void PrivateServer::thaw() {
    for (const pid_t process : processes_)
        kill(-process, SIGCONT);
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
