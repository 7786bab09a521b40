#include "app/QuitSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace sonotrace {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

// A signal handler gets no context but its number, so this one thing is reached by name.
std::atomic<int> quitPipe{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void onSignal(int) {
    const int interrupted = errno;
    const char byte = 0;
    // A full pipe already says what is to be said.
    [[maybe_unused]] const auto written = write(quitPipe.load(std::memory_order_relaxed), &byte, 1);
    errno = interrupted;
}

} // namespace

QuitSignals::QuitSignals() {
    std::signal(SIGPIPE, SIG_IGN); // nobody reads the log any more: no reason to end
    if (pipe2(ends_, O_NONBLOCK | O_CLOEXEC) != 0)
        return;
    quitPipe.store(ends_[1], std::memory_order_relaxed);
    auto* notifier = new QSocketNotifier(ends_[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::exit(0); // quit() would ask each window first, an open dialog too
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : kSignals)
        sigaction(number, &action, nullptr);
}

QuitSignals::~QuitSignals() {
    for (const int number : kSignals)
        std::signal(number, SIG_DFL);
    quitPipe.store(-1, std::memory_order_relaxed);
    for (const int end : ends_) {
        if (end >= 0)
            close(end);
    }
}

} // namespace sonotrace
