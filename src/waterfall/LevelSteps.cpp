#include "waterfall/LevelSteps.h"

#include <limits>

namespace sonotrace {

void LevelSteps::setLimits(float minDB, float maxDB) {
    if (minDB == minDB_ && maxDB == maxDB_)
        return;
    minDB_ = minDB;
    maxDB_ = maxDB;
    scale_ = LevelScale(minDB, maxDB);
    build();
}

void LevelSteps::build() {
    // Limits this large, or without a distance between them, leave too few digits for a table.
    constexpr float kLargestLimit = 10000.0F;
    tabled_ = std::abs(minDB_) <= kLargestLimit && std::abs(maxDB_) <= kLargestLimit && minDB_ < maxDB_;
    if (!tabled_)
        return;
    begin_[0] = 0.0; // silence and all that is below the floor
    for (std::int32_t step = 1; step <= kTopStep; ++step)
        begin_[static_cast<std::size_t>(step)] = scale_.magnitudeOfStep(step);
    begin_[kTopStep + 1] = std::numeric_limits<double>::infinity();

    std::size_t step = 0;
    for (std::uint64_t bucket = 0; bucket < kBuckets; ++bucket) {
        const auto smallest = std::bit_cast<double>((bucket + kFirstBucket) << kDroppedBits);
        while (smallest >= begin_[step + 1])
            ++step;
        firstStep_[bucket] = static_cast<std::uint8_t>(step);
    }
}

} // namespace sonotrace
