#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace sonotrace {

/// Carries values from one thread that writes to one that reads, in order, without locks and without
/// allocation.
template <typename Value, std::uint32_t capacity>
class Ring {
public:
    /// Appends a value; false when there is no room. Writer.
    bool push(const Value& value) {
        const std::uint32_t written = written_.load(std::memory_order_relaxed);
        if (written - read_.load(std::memory_order_acquire) == capacity)
            return false;
        values_[written % capacity] = value;
        written_.store(written + 1, std::memory_order_release);
        return true;
    }

    /// Values that wait. The writer may see some that have just been read, the reader not yet those that have
    /// just been written.
    std::uint32_t size() const {
        return written_.load(std::memory_order_acquire) - read_.load(std::memory_order_acquire);
    }

    /// A value that waits, 0 being the oldest. Reader.
    const Value& operator[](std::uint32_t i) const {
        return values_[(read_.load(std::memory_order_relaxed) + i) % capacity];
    }

    /// Takes the oldest off. Reader.
    void pop() { read_.store(read_.load(std::memory_order_relaxed) + 1, std::memory_order_release); }

    /// Forgets what waits. Reader.
    void clear() { read_.store(written_.load(std::memory_order_acquire), std::memory_order_release); }

private:
    std::array<Value, capacity> values_{};
    std::atomic<std::uint32_t> written_{0}; ///< values ever written; wraps around
    std::atomic<std::uint32_t> read_{0};    ///< values ever read; wraps around

    static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
    static_assert((capacity & (capacity - 1)) == 0, "the counters wrap around at a multiple of the capacity");
};

} // namespace sonotrace
