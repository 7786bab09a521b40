#include "generator/OutputLevels.h"

#include "widgets/LevelText.h"

#include <cmath>

namespace sonotrace {

/// How many share the full scale, the voice itself included: what is off is meant to be switched on.
int OutputLevels::voices(const std::atomic<std::int32_t>& enabled) const {
    const auto isOn = [](const std::atomic<std::int32_t>& flag) {
        return flag.load(std::memory_order_relaxed) > 0 ? 1 : 0;
    };
    int count = (sweep_.enabled.load(std::memory_order_relaxed) != 0 ? 1 : 0) + (isOn(enabled) == 0 ? 1 : 0);
    for (const GeneratorSlot& slot : bank_.slots)
        count += isOn(slot.enabled);
    return count;
}

ValueNotation OutputLevels::notation(const std::atomic<std::int32_t>& enabled) const {
    ValueNotation notation = volumeNotation();
    notation.read = [this, &enabled, plain = notation.read](const QString& text) {
        const auto level = levelFromText(calibration_, text);
        return level ? std::optional(std::pow(10.0, *level / 20.0) * voices(enabled)) : plain(text);
    };
    notation.describe = [this, &enabled](double volume) {
        if (!isCalibrated(calibration_))
            return QString();
        const int count = voices(enabled);
        QString text = levelText(calibration_, 20.0 * std::log10(volume / count)) + " as a sine";
        if (count > 1)
            text += QString(", which is 1 of %1 that are on").arg(count);
        return text;
    };
    return notation;
}

} // namespace sonotrace
