#include "scope/ScopeSettings.h"

#include "base/PlainNumber.h"
#include "base/SampleRate.h"

#include <cstddef>
#include <string>

namespace sonotrace {

std::vector<Setting> worded(const ScopeControls& controls, const Calibration& calibration) {
    const std::int32_t length = displayBuflength(controls.sweep);
    std::vector<Setting> words = {
        {"Time base",
         std::to_string(length) + " samples, " + plainNumber(length * 1000.0 / kSampleRate, 3) + " ms"},
        {"Steady",
         controls.steady == 0 ? "off" : std::string("channel ").append(std::to_string(controls.steady))}};
    const auto addBoth = [&words](const std::string& name, const auto& valueOf) {
        for (const std::size_t i : {0U, 1U})
            words.push_back({name + (i == 0 ? " 1" : " 2"), valueOf(i)});
    };
    addBoth("Range",
            [&](std::size_t i) { return std::string("x ").append(plainNumber(controls.range[i], 2)); });
    addBoth("Offset", [&](std::size_t i) { return plainNumber(controls.offset[i], 0) + " px"; });
    addBoth("Trigger", [&](std::size_t i) {
        return std::string(controls.triggerPolarity[i] ? "falling" : "rising")
            .append(" through ")
            .append(plainNumber(controls.trigger[i], 0));
    });
    addBoth("Invert", [&](std::size_t i) { return std::string(controls.invert[i] ? "on" : "off"); });
    words.push_back({"Calibration", calibrationText(calibration)});
    return words;
}

} // namespace sonotrace
