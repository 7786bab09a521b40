#include "generator/WriterThread.h"

#include <utility>

namespace sonotrace {

namespace {
constexpr std::chrono::seconds kPatienceAtTheEnd{5};
}

WriterThread::~WriterThread() {
    if (!thread_.joinable())
        return;
    const bool done = wait(kPatienceAtTheEnd);
    {
        const std::lock_guard lock(state_->mutex);
        state_->stopping = true;
    }
    state_->changed.notify_all();
    done ? thread_.join() : thread_.detach();
}

void WriterThread::post(std::function<void()> job) {
    {
        const std::lock_guard lock(state_->mutex);
        state_->jobs.push_back(std::move(job));
    }
    state_->changed.notify_all();
    if (!thread_.joinable())
        thread_ = std::thread([state = state_] { run(*state); });
}

bool WriterThread::wait(std::chrono::milliseconds patience) const {
    std::unique_lock lock(state_->mutex);
    return state_->changed.wait_for(lock, patience, [this] { return state_->jobs.empty(); });
}

std::size_t WriterThread::pending() const {
    const std::lock_guard lock(state_->mutex);
    return state_->jobs.size();
}

void WriterThread::run(State& state) {
    std::unique_lock lock(state.mutex);
    for (;;) {
        state.changed.wait(lock, [&state] { return state.stopping || !state.jobs.empty(); });
        if (state.jobs.empty())
            return;
        const auto job = std::move(state.jobs.front());
        lock.unlock();
        job();
        lock.lock();
        state.jobs.pop_front();
        state.changed.notify_all();
    }
}

} // namespace sonotrace
