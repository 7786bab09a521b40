#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

namespace sonotrace {

/// A large array, all zero at first, on a cache line's boundary. Its pages come from the system when they are
/// first written: what nobody writes costs no memory. For numbers, and for atomics that are plain numbers.
template <typename T>
class ZeroedArray {
    static_assert(std::is_trivially_destructible_v<T>);

public:
    /// Throws std::bad_alloc.
    explicit ZeroedArray(std::size_t count) : count_(count) {
        std::size_t bytes = count * sizeof(T) + kAlignment;
        memory_.reset(std::calloc(bytes, 1));
        if (!memory_)
            throw std::bad_alloc();
        void* begin = memory_.get();
        numbers_ = static_cast<T*>(std::align(kAlignment, count * sizeof(T), begin, bytes));
    }

    T* data() { return numbers_; }
    const T* data() const { return numbers_; }
    std::size_t size() const { return count_; }
    T& operator[](std::size_t i) { return numbers_[i]; }
    const T& operator[](std::size_t i) const { return numbers_[i]; }

private:
    static constexpr std::size_t kAlignment = 64;

    struct Release {
        void operator()(void* memory) const { std::free(memory); }
    };

    std::size_t count_;
    std::unique_ptr<void, Release> memory_;
    T* numbers_ = nullptr;
};

} // namespace sonotrace
