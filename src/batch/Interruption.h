#pragma once

#include <string>

namespace sonotrace {

/// Has SIGINT, SIGTERM and SIGHUP end the process at once, wherever it waits, with the status that shells
/// expect, after the unfinished files have been removed. A reader that has gone and a file that may not grow
/// become errors of the write. To be called once, before any thread is made.
void endOnSignals();

/// A file that is removed when a signal ends the process, for as long as the object lives. One thread.
class UnfinishedFile {
public:
    /// To be made before the file is. Throws a CommandError when there are too many at a time.
    explicit UnfinishedFile(std::string path);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const std::string& path() const { return path_; }

private:
    const std::string path_;
    std::size_t place_ = 0;
};

} // namespace sonotrace
