#pragma once

#include <csignal>
#include <sys/resource.h>

namespace sonotrace {

/// While it is full, no file grows.
inline void setDiskFull(bool isFull) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{isFull ? 0 : RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace sonotrace
