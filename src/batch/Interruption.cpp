#include "batch/Interruption.h"

#include "batch/CommandError.h"

#include <array>
#include <atomic>
#include <csignal>
#include <unistd.h>
#include <utility>

namespace sonotrace {

namespace {

// A signal handler gets no context but its number, so these are reached by name.
std::array<std::atomic<const char*>, 8> unfinished{};
static_assert(std::atomic<const char*>::is_always_lock_free);

void onSignal(int number) {
    for (std::atomic<const char*>& path : unfinished) {
        if (const char* const name = path.exchange(nullptr))
            unlink(name);
    }
    _exit(kAfterSignal + number);
}

} // namespace

void endOnSignals() {
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    struct sigaction before {};
    if (sigaction(SIGHUP, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) // nohup
        sigaction(SIGHUP, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

UnfinishedFile::UnfinishedFile(std::string path) : path_(std::move(path)) {
    for (; place_ < unfinished.size(); ++place_) {
        const char* nobody = nullptr;
        if (unfinished[place_].compare_exchange_strong(nobody, path_.c_str()))
            return;
    }
    throw CommandError("too many files at a time");
}

UnfinishedFile::~UnfinishedFile() {
    unfinished[place_].store(nullptr);
}

} // namespace sonotrace
