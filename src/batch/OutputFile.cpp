#include "batch/OutputFile.h"

#include "batch/CommandError.h"
#include "batch/StandardStreams.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace sonotrace {

namespace {

constexpr mode_t kEverybody = 0666; // less what the user's mask takes away

/// Names of streams that are open already, which may lead to ordinary files that others write to as well.
bool isNameOfStream(std::string_view path) {
    return path.starts_with("/proc/") || path.starts_with("/dev/fd/") || path == "/dev/stdout" ||
           path == "/dev/stderr";
}

/// Where links lead to, or the path itself where nothing is.
std::string resolved(const std::string& path) {
    std::error_code unknown;
    std::filesystem::path place(path);
    for (int links = 0; links < 40 && std::filesystem::is_symlink(place, unknown) &&
                        !std::filesystem::exists(place, unknown);
         ++links) // to what is not there yet
        place = place.parent_path() / std::filesystem::read_symlink(place, unknown);
    const auto found = std::filesystem::weakly_canonical(place, unknown);
    return unknown ? path : found.string();
}

std::string nameBeside(const std::string& target) {
    static std::atomic<int> count{0};
    const auto folder = std::filesystem::path(target).parent_path();
    const std::string name =
        ".sonotrace-" + std::to_string(getpid()) + "-" + std::to_string(++count) + ".part";
    return (folder / name).string();
}

} // namespace

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
    if (path_.empty())
        throw CommandError("the file to write has no name", kWrongArguments);
    if (path_ == "-") {
        descriptor_ = STDOUT_FILENO;
        return;
    }
    struct stat there {};
    const bool isThere = stat(path_.c_str(), &there) == 0;
    if (isThere && S_ISDIR(there.st_mode))
        throw CommandError(path_ + " is a folder");
    if (isThere && (!S_ISREG(there.st_mode) || isNameOfStream(path_)))
        openThrough();
    else if (isThere && access(path_.c_str(), W_OK) != 0)
        failToWrite(path_, errno);
    else
        openBeside();
    if (descriptor_ < 0)
        failToWrite(path_, errno);
    if (isThere && beside_) // as if it had been written in place; not to be done is no reason to fail
        [[maybe_unused]]
        const int kept = fchmod(descriptor_, there.st_mode & 0777U);
}

OutputFile::~OutputFile() {
    if (descriptor_ >= 0 && descriptor_ != STDOUT_FILENO)
        close(descriptor_);
    if (beside_)
        unlink(beside_->path().c_str());
}

void OutputFile::openThrough() {
    descriptor_ = open(path_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
}

void OutputFile::openBeside() {
    target_ = resolved(path_);
    beside_.emplace(nameBeside(target_));
    descriptor_ = open(beside_->path().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kEverybody);
}

bool OutputFile::isTerminal() const {
    return isatty(descriptor_) == 1;
}

void OutputFile::write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            failToWrite(path_, errno);
        if (written > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void OutputFile::commit() {
    if (descriptor_ == STDOUT_FILENO)
        return;
    if (close(std::exchange(descriptor_, -1)) != 0)
        failToWrite(path_, errno);
    if (!beside_)
        return;
    if (std::rename(beside_->path().c_str(), target_.c_str()) != 0)
        failToWrite(path_, errno);
    beside_.reset();
}

} // namespace sonotrace
