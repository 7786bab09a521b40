#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>

namespace sonotrace {

/// A small struct that one thread writes now and then and others read as a whole, without waiting for each
/// other.
template <typename T>
class Published {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    /// The one thread that writes.
    void store(const T& value) {
        Words words{};
        std::memcpy(words.data(), &value, sizeof(T));
        const std::uint32_t count = changes_.load(std::memory_order_relaxed);
        changes_.store(count + 1, std::memory_order_relaxed); // odd: who sees one of the new words sees this
        for (std::size_t i = 0; i < kWords; ++i)
            words_[i].store(words[i], std::memory_order_release);
        changes_.store(count + 2, std::memory_order_release);
    }

    /// Nothing before the first value, and while one is being written. Any thread.
    std::optional<T> load() const {
        const std::uint32_t count = changes_.load(std::memory_order_acquire);
        Words words;
        for (std::size_t i = 0; i < kWords; ++i)
            words[i] = words_[i].load(std::memory_order_acquire);
        if (count == 0 || count % 2 != 0 || changes_.load(std::memory_order_relaxed) != count)
            return std::nullopt;
        T value;
        std::memcpy(static_cast<void*>(&value), words.data(), sizeof(T));
        return value;
    }

private:
    static constexpr std::size_t kWords = (sizeof(T) + 7) / 8;
    using Words = std::array<std::uint64_t, kWords>;

    std::atomic<std::uint32_t> changes_{0};
    std::array<std::atomic<std::uint64_t>, kWords> words_{};
};

} // namespace sonotrace
