#pragma once

#include "base/DeferredLog.h"
#include "waterfall/AlignedFloats.h"
#include "waterfall/WaterfallParameters.h"

#include <array>
#include <cstdint>

struct fftwf_plan_s;

namespace sonotrace {

/// The waterfall's real transform, in place, in the packed layout its colour scale is made for. With X[k] the
/// plain sum of x[n] * exp(-2 pi i k n / N), the first N numbers become
///     2 X[0], 2 X[N/2], 2 Re X[1], 2 Im X[1], ... 2 Re X[N/2 - 1], 2 Im X[N/2 - 1]
/// and what lies behind them stays as it was.
///
/// The plans of all lengths are made here, with the object, because planning allocates and locks. They are
/// estimated, not measured: a measured plan is the winner of a race, so it takes seconds for the long ones
/// and the last bits of a line would change from run to run.
///
/// Constructed and destroyed on the window thread (FFTW plans nothing on two threads), used on the capture
/// thread. Throws std::bad_alloc.
class WaterfallTransform {
public:
    WaterfallTransform(WaterfallParameters& parameters, DeferredLog& log);
    ~WaterfallTransform();
    WaterfallTransform(const WaterfallTransform&) = delete;
    WaterfallTransform& operator=(const WaterfallTransform&) = delete;

    /// Takes up the requested length if it is not the one in force, and logs a few lines about it: once per
    /// choice of the user, not per line. Returns the length in force.
    std::int32_t adoptRequestedLength();

    /// Adopts the requested length and transforms the first N numbers of the frame, which holds at least
    /// kLargestFrameLength. Returns N.
    std::int32_t transform(AlignedFloats& frame);

private:
    WaterfallParameters& parameters_;
    DeferredLog& log_;
    std::array<fftwf_plan_s*, kLargestLog2Length + 1>
        setups_{};               ///< by log2 of the length; none that cannot come
    AlignedFloats bufferMemory_; ///< the natural layout: N/2 + 1 complex numbers
};

} // namespace sonotrace
