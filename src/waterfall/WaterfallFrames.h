#pragma once

#include "waterfall/AlignedFloats.h"
#include "waterfall/SampleRing.h"
#include "waterfall/WaterfallTransform.h"

#include <cstdint>
#include <span>

namespace sonotrace {

/// The work areas of the line producer, and its steps: take samples out of the ring, weight them, transform
/// them, and take magnitudes. All areas are made once for the longest transform, start as zeros and are never
/// cleared: what an earlier line or a longer transform left behind shows where a line reads further than it
/// was written (above 22050 Hz, and in the last pairs of a sliding frame). Capture thread; constructed and
/// destroyed on the window thread. Throws std::bad_alloc.
class WaterfallFrames {
public:
    WaterfallFrames(WaterfallParameters& parameters, SampleRing& ring, DeferredLog& log);

    /// Builds the window of `length` samples if it is not the one at hand.
    void updateCoefficients(std::int32_t length);

    /// Takes the next `length` samples, weighted with the window, as the frame of produceLine().
    void takeFrame(std::int32_t length);

    /// Slides the frame of `length` samples on by `hop` samples, keeping `keep`, and weights it, for
    /// produceSlidLine(). keep + hop is `length` or one less.
    void slideFrame(std::int32_t length, std::int32_t hop, std::int32_t keep);

    /// Transforms the frame of takeFrame(). Returns the length of the transform in force, which may be new.
    std::int32_t produceLine() { return produce(waterfallWork_); }

    /// The same for the frame of slideFrame().
    std::int32_t produceSlidLine() { return produce(waterfallScratch_); }

    /// The squared magnitudes of the frame that was transformed last, of its first bins.
    std::span<const float> powers(std::size_t bins);

    /// The line of a transform of `length` samples. Those behind the first bins may be of an earlier line.
    std::span<const double> magnitudes(std::int32_t length, std::size_t bins);

    /// WaterfallTransform::adoptRequestedLength.
    std::int32_t adoptRequestedLength() { return transform_.adoptRequestedLength(); }

private:
    std::int32_t produce(AlignedFloats& frame);

    WaterfallParameters& parameters_;
    SampleRing& ring_;
    DeferredLog& log_;
    WaterfallTransform transform_;
    AlignedFloats waterfallWork_;     ///< the plain frame, or the sliding one as complex numbers
    AlignedFloats waterfallScratch_;  ///< the sliding frame, weighted
    const float* produced_ = nullptr; ///< of these two, the frame that was transformed last
    ZeroedArray<float> waterfallPowers_;
    ZeroedArray<double> waterfallMagnitudes_;
    ZeroedArray<double> waterfallCoeffs_;
    std::int32_t coefficientLength_ = -1; ///< what the window was built for last
    FftWindowType coefficientType_ = -1;
};

} // namespace sonotrace
