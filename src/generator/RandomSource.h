#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace sonotrace {

inline constexpr std::size_t kRandomWords = 624; ///< of the generator's state

/// The 32-bit Mersenne Twister MT19937 with the seeding of its 1998 form. It seeds itself with 4357 on first
/// use, so that every run of the program makes the same noise and measurements can be repeated. Audio thread.
class RandomSource {
public:
    /// Fills `values` with the next numbers of the sequence.
    void draw(std::span<std::uint32_t> values);

private:
    void seed(std::uint32_t seed);
    void refill();

    std::array<std::uint32_t, kRandomWords> state_{};
    std::array<std::uint32_t, kRandomWords> outputs_{};
    std::size_t used_ = kRandomWords; ///< outputs handed out
    bool seeded_ = false;
};

} // namespace sonotrace
