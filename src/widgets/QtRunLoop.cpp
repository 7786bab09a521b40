#include "widgets/QtRunLoop.h"

#include <sys/eventfd.h>
#include <unistd.h>

namespace sonotrace {

namespace {
constexpr int kPollInterval = 20; // ms
}

QtRunLoop::QtRunLoop() : event_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (event_ < 0) {
        startTimer(kPollInterval); // out of descriptors: nothing can wake it
        return;
    }
    notifier_.emplace(event_, QSocketNotifier::Read);
    connect(&*notifier_, &QSocketNotifier::activated, this, [this] {
        eventfd_t wakes = 0;
        eventfd_read(event_, &wakes); // first: what comes while the sources are run wakes it again
        runSources();
    });
}

QtRunLoop::~QtRunLoop() {
    notifier_.reset();
    if (event_ >= 0)
        close(event_);
}

void QtRunLoop::wake() {
    if (event_ >= 0)
        eventfd_write(event_, 1);
}

void QtRunLoop::timerEvent(QTimerEvent*) {
    runSources();
}

} // namespace sonotrace
