#include "batch/StandardStreams.h"

#include "batch/CommandError.h"

#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>
#include <unistd.h>

namespace sonotrace {

namespace {

/// The number of the error that a write ended with, 0 when all was written.
int writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return errno;
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

} // namespace

void failToWrite(std::string_view name, int systemError) {
    if (systemError == EPIPE)
        throw CommandError({}, kAfterSignal + SIGPIPE);
    throw CommandError(std::string(name) +
                       " cannot be written: " + std::generic_category().message(systemError));
}

void failToRead(std::string_view name, int systemError) {
    throw CommandError(std::string(name) +
                       " cannot be read: " + std::generic_category().message(systemError));
}

void printOut(std::string_view text) {
    if (const int error = writeAll(STDOUT_FILENO, text))
        failToWrite("the output", error);
}

void warn(std::string_view sentence) {
    writeAll(STDERR_FILENO, "sonotrace: " + std::string(sentence) + "\n");
}

} // namespace sonotrace
