#pragma once

#include "base/ChannelFold.h"
#include "base/FftWindows.h"
#include "base/Setting.h"
#include "measure/Calibration.h"
#include "measure/PowerAverage.h"
#include "spectrum/SpectrumGeometry.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace sonotrace {

/// All that has to be known to measure a spectrum again.
struct SpectrumSettings {
    double fftSize = 0;
    FftWindowType window = 0;
    ChannelFold fold = ChannelFold::Sum;
    std::int32_t blocks = 1; ///< averaged sample by sample
    AverageKind averageKind = AverageKind::Off;
    std::int32_t averagedSpectra = 1;
    SpectrumDisplay display;
    std::optional<double> fundamentalHz = {}; ///< typed
    double mainsHz = 0;                       ///< 0: not asked for
    Calibration calibration = {};
    std::size_t correctionPoints = 0; ///< of the microphone; 0: not corrected
};

/// The same in words.
std::vector<Setting> worded(const SpectrumSettings& settings);

} // namespace sonotrace
