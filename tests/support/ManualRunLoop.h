#pragma once

#include "platform/RunLoop.h"

#include <deque>
#include <mutex>

namespace sonotrace {

/// A run loop that the test turns.
class ManualRunLoop : public RunLoop {
public:
    void post(std::function<void()> task) override {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
    }

    std::size_t waiting() {
        const std::lock_guard lock(mutex_);
        return tasks_.size();
    }

    /// Runs what has been posted, tasks posted meanwhile included.
    void turn() {
        for (;;) {
            std::function<void()> task;
            {
                const std::lock_guard lock(mutex_);
                if (tasks_.empty())
                    return;
                task = std::move(tasks_.front());
                tasks_.pop_front();
            }
            task();
        }
    }

private:
    std::mutex mutex_;
    std::deque<std::function<void()>> tasks_;
};

} // namespace sonotrace
