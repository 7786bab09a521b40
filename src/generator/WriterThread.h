#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace sonotrace {

/// Does what may wait for a disk, in the order given, on a thread of its own that is made with the first job.
/// Window thread.
class WriterThread {
public:
    /// Waits a few seconds for what is not done yet. A disk that takes longer is left alone with it.
    ~WriterThread();

    void post(std::function<void()> job);

    /// Waits until everything posted is done, at most `patience`. False when it is not.
    bool wait(std::chrono::milliseconds patience) const;

    /// Jobs that are not done.
    std::size_t pending() const;

private:
    /// Outlives the writer when a job hangs.
    struct State {
        mutable std::mutex mutex;
        mutable std::condition_variable changed;
        std::deque<std::function<void()>> jobs; ///< the first is being done
        bool stopping = false;
    };

    static void run(State& state);

    const std::shared_ptr<State> state_ = std::make_shared<State>();
    std::thread thread_;
};

} // namespace sonotrace
