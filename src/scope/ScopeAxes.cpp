#include "scope/ScopeAxes.h"

namespace sonotrace {

ScopeLevelAxis scopeLevelAxis(const ScopeScale& scale, double height, const Calibration& calibration) {
    const auto fullScale = instantaneousValue(calibration, 1.0);
    const double perFullScale = fullScale.value_or(100.0);
    ScopeLevels levels = visibleLevels(scale, height);
    levels.axis = {levels.axis.from * perFullScale, levels.axis.to * perFullScale};
    return {fullScale ? std::string(unitName(linearUnit(calibration.unit))) : "%", levels};
}

} // namespace sonotrace
