#pragma once

#include "base/SampleRate.h"

#include <cmath>
#include <cstdint>
#include <numeric>

namespace sonotrace {

/// A sine is read from a table of this many entries. With a frequency that moves by whole entries it repeats
/// exactly, and only the rounding to 16 bits is heard beside it.
inline constexpr std::int64_t kCleanTable = 10000;

/// The multiple of 44100 / `parts` Hz next to `frequencyHz`, the first at least, not above `mostHz`.
inline double nearestMultiple(std::int64_t parts, double frequencyHz, double mostHz) {
    const auto exactly = [parts](double times) { return times * kSampleRate / static_cast<double>(parts); };
    double times = std::round(frequencyHz / exactly(1.0));
    if (!(times >= 1.0)) // what is no number included
        times = 1.0;
    return exactly(std::fmin(times, std::floor(mostHz / exactly(1.0))));
}

/// The clean frequency next to one: a multiple of 4.41 Hz.
inline double nearestCleanFrequency(double frequencyHz, double mostHz) {
    return nearestMultiple(kCleanTable, frequencyHz, mostHz);
}

/// The clean frequency next to one of which a block of `blockSize` samples holds whole periods as well: what
/// repeats with both repeats with their common divisor.
inline double nearestCleanFrequencyInBlock(double frequencyHz, std::int64_t blockSize, double mostHz) {
    return nearestMultiple(std::gcd(kCleanTable, blockSize), frequencyHz, mostHz);
}

} // namespace sonotrace
