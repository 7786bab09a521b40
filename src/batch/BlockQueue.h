#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace sonotrace {

/// Hands blocks from one thread to another, a few at a time: who is faster waits. Any thread.
template <typename Block>
class BlockQueue {
public:
    explicit BlockQueue(std::size_t capacity) : capacity_(capacity) {}

    /// Waits for room. False when nobody takes blocks any more.
    bool push(Block block) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isEnded_ || blocks_.size() < capacity_; });
        if (isEnded_)
            return false;
        blocks_.push_back(std::move(block));
        changed_.notify_all();
        return true;
    }

    /// Waits for a block. Nothing when there will be no more.
    std::optional<Block> pop() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isEnded_ || !blocks_.empty(); });
        if (blocks_.empty())
            return std::nullopt;
        Block block = std::move(blocks_.front());
        blocks_.pop_front();
        changed_.notify_all();
        return block;
    }

    /// No more blocks are pushed; those that are there can still be taken.
    void finish() {
        const std::lock_guard lock(mutex_);
        isEnded_ = true;
        changed_.notify_all();
    }

    /// Nobody wants blocks any more.
    void abandon() {
        const std::lock_guard lock(mutex_);
        isEnded_ = true;
        blocks_.clear();
        changed_.notify_all();
    }

private:
    const std::size_t capacity_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Block> blocks_;
    bool isEnded_ = false;
};

} // namespace sonotrace
