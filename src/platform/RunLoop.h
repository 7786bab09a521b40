#pragma once

#include <cstddef>
#include <vector>

namespace sonotrace {

/// A thread that runs sources of work when another thread has woken it. The windows implement it for the
/// window thread; tests turn one by hand.
class RunLoop {
public:
    /// Something that gets work from another thread. It keeps the work itself, so that waking the loop needs
    /// no memory.
    class Source {
    public:
        virtual void run() = 0; ///< does what has come since; the loop's thread

    protected:
        ~Source() = default;
    };

    virtual ~RunLoop() = default;

    /// Adds a source, or removes one that is not run any more from then on, also when a source asks for it
    /// while it is run. The loop's thread.
    void add(Source& source) { sources_.push_back(&source); }
    void remove(Source& source) {
        if (std::erase(sources_, &source) > 0)
            wake(); // while the sources are run, the next one has moved up and is passed over
    }

    /// Has all sources run soon, on the loop's thread. Any thread; neither allocates nor locks.
    virtual void wake() = 0;

protected:
    void runSources() {
        for (std::size_t i = 0; i < sources_.size(); ++i) // by index: it may add or remove sources
            sources_[i]->run();
    }

private:
    std::vector<Source*> sources_;
};

} // namespace sonotrace
