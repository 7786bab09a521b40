#include "generator/RandomSource.h"

#include "base/WideVectors.h"

#include <algorithm>

namespace sonotrace {

namespace {

constexpr std::size_t kMiddle = 397;
constexpr std::uint32_t kUpperMask = 0x80000000U;
constexpr std::uint32_t kLowerMask = 0x7FFFFFFFU;
constexpr std::uint32_t kMatrix = 0x9908B0DFU;

std::uint32_t twist(std::uint32_t word, std::uint32_t next, std::uint32_t middle) {
    const std::uint32_t joined = (word & kUpperMask) | (next & kLowerMask);
    // 0 - bit instead of a choice: the loops below are vectorised.
    return middle ^ (joined >> 1) ^ ((0U - (joined & 1U)) & kMatrix);
}

SONOTRACE_WIDE_VECTORS void makeWords(std::uint32_t* x, std::uint32_t* outputs) {
    // In three runs, so that none reads what it has written less than a vector's length ago.
    for (std::size_t i = 0; i < kRandomWords - kMiddle; ++i)
        x[i] = twist(x[i], x[i + 1], x[i + kMiddle]);
    for (std::size_t i = kRandomWords - kMiddle; i < kRandomWords - 1; ++i)
        x[i] = twist(x[i], x[i + 1], x[i - (kRandomWords - kMiddle)]);
    x[kRandomWords - 1] = twist(x[kRandomWords - 1], x[0], x[kMiddle - 1]);

    for (std::size_t i = 0; i < kRandomWords; ++i) {
        std::uint32_t y = x[i];
        y ^= y >> 11;
        y ^= (y << 7) & 0x9D2C5680U;
        y ^= (y << 15) & 0xEFC60000U;
        y ^= y >> 18;
        outputs[i] = y;
    }
}

} // namespace

void RandomSource::seed(std::uint32_t seed) {
    state_[0] = seed;
    for (std::size_t i = 1; i < kRandomWords; ++i)
        state_[i] = 69069U * state_[i - 1];
    seeded_ = true;
}

void RandomSource::refill() {
    if (!seeded_)
        seed(4357);
    makeWords(state_.data(), outputs_.data());
    used_ = 0;
}

void RandomSource::draw(std::span<std::uint32_t> values) {
    while (!values.empty()) {
        if (used_ == kRandomWords)
            refill();
        const std::size_t count = std::min(values.size(), kRandomWords - used_);
        std::copy_n(outputs_.begin() + static_cast<std::ptrdiff_t>(used_), count, values.begin());
        used_ += count;
        values = values.subspan(count);
    }
}

} // namespace sonotrace
