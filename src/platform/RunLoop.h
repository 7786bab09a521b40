#pragma once

#include <functional>

namespace sonotrace {

/// A thread's queue of work. The windows implement it for the window thread; tests turn one by hand.
class RunLoop {
public:
    virtual ~RunLoop() = default;

    /// Runs `task` later on the loop's thread, in the order posted. Any thread.
    virtual void post(std::function<void()> task) = 0;
};

} // namespace sonotrace
