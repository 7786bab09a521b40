#pragma once

#include "batch/ToneResponse.h"

#include <span>
#include <string>

namespace sonotrace {

/// What a response was measured with.
struct ResponseConditions {
    std::string output; ///< names of the devices
    std::string input;
    ResponseQuestion question;
    double settleSeconds = 0; ///< from playing to listening
};

/// A line a frequency for a terminal, a dash where nothing was heard.
std::string responseText(std::span<const ResponsePoint> points);

/// The columns frequency_hz, left_db and right_db; empty where nothing was heard.
std::string responseTable(std::span<const ResponsePoint> points, const ResponseConditions& conditions);

/// The same with all digits; null where nothing was heard.
std::string responseJson(std::span<const ResponsePoint> points, const ResponseConditions& conditions);

} // namespace sonotrace
