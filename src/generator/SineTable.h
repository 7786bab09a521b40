#pragma once

#include <array>
#include <cmath>

namespace sonotrace {

inline constexpr int kSineTableSize = 10000;

/// One period of a sine of amplitude 32767 in 10000 entries, shared by the sine and square generators and the
/// sweep.
class SineTable {
public:
    SineTable() {
        // 3.1415927 and not pi: it lies just above pi, which makes entry 5000 slightly negative, and with it
        // the two halves of the square wave equally long.
        for (std::size_t i = 0; i < entries_.size(); ++i)
            entries_[i] = std::sin(static_cast<double>(i) / 5000.0 * 3.1415927) * 32767.0;
    }

    const double* data() const { return entries_.data(); }
    double operator[](std::size_t index) const { return entries_[index]; }

private:
    std::array<double, kSineTableSize> entries_;
};

/// Brings a position in the table into [0, 10000) by whole periods. Positions that are not finite become 0.
inline double wrapTablePosition(double position) {
    constexpr double kSize = kSineTableSize;
    // Far out, the steps below would take for ever or not move the value at all.
    if (!(std::abs(position) < 100.0 * kSize))
        position = std::isfinite(position) ? std::fmod(position, kSize) : 0.0;
    while (position < 0.0)
        position += kSize;
    while (position >= kSize)
        position -= kSize;
    return position;
}

} // namespace sonotrace
