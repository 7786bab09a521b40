#pragma once

#include "base/Numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace sonotrace {

/// From a magnitude to a step of the colour scale:
///     level = (ln(max(v, 1)) * 6.25 - minDB) * 100 / (maxDB - minDB), kept within 0 to 100
/// The factor 6.25 on the natural logarithm is the display's own scale, not 20 / ln 10. With the same floor
/// and ceiling the quotient is infinite (top or bottom) or not a number (bottom).
class LevelScale {
public:
    LevelScale(float minDB, float maxDB)
        : floor_(static_cast<double>(minDB)), range_(static_cast<double>(maxDB - minDB)) {}

    /// The smallest magnitude the scale tells from silence; not a number counts as silence.
    static double audible(double magnitude) { return magnitude > 1.0 ? magnitude : 1.0; }

    /// A magnitude on the display's own scale, 0 and above.
    static double decibels(double magnitude) { return std::log(audible(magnitude)) * 6.25; }

    /// The nearest hundredth of a decibel as a whole number, up to 655.35 dB: no sum of 131072 samples
    /// is louder than 147 dB.
    static std::uint16_t hundredths(double decibels) {
        return static_cast<std::uint16_t>(std::min(decibels * 100.0 + 0.5, 65535.0));
    }

    /// 0 to 100, or not a number.
    double level(double magnitude) const { return levelAt(decibels(magnitude)); }

    /// Step 0 to 254: the product 100 * 2.55 is 254.99999999999997.
    std::int32_t step(double magnitude) const { return stepAt(decibels(magnitude)); }

    /// The same from decibels.
    double levelAt(double decibels) const {
        const double level = (decibels - floor_) * 100.0 / range_;
        if (level < 0.0)
            return 0.0;
        return level > 100.0 ? 100.0 : level;
    }

    std::int32_t stepAt(double decibels) const {
        return std::clamp(truncateToInt32(levelAt(decibels) * 2.55), 0, 255);
    }

    /// The middle of the decibels that share a step.
    double decibelsOf(std::int32_t step) const { return floor_ + (step + 0.5) / 2.55 * range_ / 100.0; }

private:
    double floor_;
    double range_; ///< the difference of the two limits as a single-precision number
};

} // namespace sonotrace
