#pragma once

#include "generator/SineTable.h"
#include "generator/SweepParameters.h"

#include <cstdint>
#include <span>

namespace sonotrace {

/// Makes the sweep's signal and moves its frequency. Audio thread.
class SweepSynthesis {
public:
    SweepSynthesis(SweepParameters& parameters, const SineTable& sineTable)
        : parameters_(parameters), sineTable_(sineTable) {}

    /// Adds the enabled sweep to interleaved samples. Its amplitudes are divided by `count`, the number of
    /// sources.
    void addTo(std::span<std::int16_t> interleaved, double count);

    void resetPhase() { phase_ = 0.0; }

private:
    struct Pass; ///< the parameters as they are for one buffer

    void takeOver(const Pass& pass);
    bool advance(const Pass& pass, double step);

    SweepParameters& parameters_;
    const SineTable& sineTable_;
    double frequency_ = 0; ///< Hz
    double phase_ = 0;     ///< position in the sine table
    bool returning_ = false;
};

} // namespace sonotrace
