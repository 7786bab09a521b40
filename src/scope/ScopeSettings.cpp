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
    for (std::size_t i = 0; i < controls.range.size(); ++i) {
        const std::string channel = i == 0 ? " 1" : " 2";
        words.push_back({"Range" + channel, std::string("x ").append(plainNumber(controls.range[i], 2))});
        words.push_back({"Offset" + channel, plainNumber(controls.offset[i], 0) + " px"});
        words.push_back(
            {"Trigger" + channel, std::string(controls.triggerPolarity[i] ? "falling" : "rising") +
                                      " through " + plainNumber(controls.trigger[i], 0)});
        words.push_back({"Invert" + channel, controls.invert[i] ? "on" : "off"});
    }
    words.push_back({"Calibration", calibrationText(calibration)});
    return words;
}

} // namespace sonotrace
