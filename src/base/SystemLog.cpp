#include "base/SystemLog.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace sonotrace {

namespace {

// One a process, like the standard error they belong to.
std::atomic<std::uint64_t> dropped{0};
std::atomic<std::uint64_t> droppedAndSaid{0};
std::atomic<bool> isSilent{false};

[[gnu::format(printf, 1, 0)]] std::string formatted(const char* format, std::va_list arguments) {
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0)
        return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

/// Writes without waiting: what is reported to have room takes a piece of PIPE_BUF bytes. A descriptor that
/// is closed or broken takes everything. False when there was no room for all of it.
bool writeAtOnce(int descriptor, std::string_view text) {
    while (!text.empty()) {
        pollfd output{.fd = descriptor, .events = POLLOUT, .revents = 0};
        if (poll(&output, 1, 0) == 0)
            return false;
        const ssize_t written = write(descriptor, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (written < 0 && errno == EAGAIN)
            return false;
        if (written < 0 && errno != EINTR)
            return true;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

void writeLine(std::string line) {
    if (isSilent.load(std::memory_order_relaxed))
        return;
    if (line.empty() || line.back() != '\n') // some texts carry a line end of their own
        line += '\n';
    const std::uint64_t lost = dropped.load();
    const std::uint64_t unsaid = lost - droppedAndSaid.load();
    if (unsaid > 0)
        line.insert(0, std::to_string(unsaid) + " log lines were dropped, nobody read them\n");
    if (!writeAtOnce(STDERR_FILENO, line))
        ++dropped;
    else
        droppedAndSaid = lost;
}

/// Whether standard error is the stream that the service manager has connected to its journal, and has not
/// been redirected since.
bool goesToJournal() {
    const char* const stream = std::getenv("JOURNAL_STREAM"); // NOLINT(concurrency-mt-unsafe)
    struct stat log {};
    if (!stream || fstat(STDERR_FILENO, &log) != 0)
        return false;
    return std::to_string(log.st_dev) + ':' + std::to_string(log.st_ino) == stream;
}

} // namespace

void systemLog(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    writeLine(formatted(format, arguments));
    va_end(arguments);
}

void frequentLog(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    writeLine((goesToJournal() ? "<7>" : "") + formatted(format, arguments));
    va_end(arguments);
}

void printDiagnostic(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    std::fflush(stdout); // what the program prints otherwise comes in order
    writeAtOnce(STDOUT_FILENO, text);
}

void silenceSystemLog() {
    isSilent.store(true, std::memory_order_relaxed);
}

std::uint64_t droppedLogLines() {
    return dropped.load();
}

} // namespace sonotrace
