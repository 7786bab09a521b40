#pragma once

#include "waterfall/LevelScale.h"

#include <array>
#include <bit>
#include <cstdint>

namespace sonotrace {

/// LevelScale::step for many magnitudes of one scale, without a logarithm for each: the magnitudes at which
/// the steps begin are tabled, and the leading bits of a magnitude say where in the table to look. Rounding
/// makes a tabled beginning uncertain in its last digits, so whoever comes close to one is computed after
/// all; that way every step is the computed one.
class LevelSteps {
public:
    LevelSteps() { build(); }

    /// Takes up other limits, for a few microseconds when they are new. Any values.
    void setLimits(float minDB, float maxDB);

    const LevelScale& scale() const { return scale_; }

    /// Step 0 to 254.
    std::int32_t step(double magnitude) const {
        const double audible = LevelScale::audible(magnitude);
        const std::uint64_t bucket = (std::bit_cast<std::uint64_t>(audible) >> kDroppedBits) - kFirstBucket;
        if (!tabled_ || bucket >= kBuckets)
            return scale_.step(magnitude);
        std::size_t step = firstStep_[bucket];
        while (audible >= begin_[step + 1])
            ++step;
        if (audible < begin_[step] * kSurelyAbove || audible > begin_[step + 1] * kSurelyBelow)
            return scale_.step(magnitude);
        return static_cast<std::int32_t>(step);
    }

private:
    static constexpr std::int32_t kTopStep = 254;
    static constexpr std::uint32_t kDroppedBits = 46; ///< of 52: a bucket is a 64th of an octave
    static constexpr std::uint64_t kFirstBucket = std::bit_cast<std::uint64_t>(1.0) >> kDroppedBits;
    static constexpr std::uint64_t kBuckets = std::uint64_t{64} * 64; ///< magnitudes from 1 up to 2^64
    static constexpr double kSurelyAbove = 1.0 + 1e-9;
    static constexpr double kSurelyBelow = 1.0 - 1e-9;

    void build();

    float minDB_ = 0.0F;
    float maxDB_ = 100.0F;
    LevelScale scale_{minDB_, maxDB_};
    bool tabled_ = false;
    std::array<double, kTopStep + 2> begin_{}; ///< first magnitude of each step, and an end that none reaches
    std::array<std::uint8_t, kBuckets> firstStep_{};
};

} // namespace sonotrace
