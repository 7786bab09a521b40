#include "waterfall/WaterfallTransform.h"

#include "base/SystemLog.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fftw3.h>
#include <new>

namespace sonotrace {

namespace {

constexpr std::size_t kSpectrumFloats = kLargestFrameLength + 2;

fftwf_complex* complexNumbers(AlignedFloats& floats) {
    return reinterpret_cast<fftwf_complex*>(floats.data());
}

/// Lengths as powers of two and as numbers, the old one and the new one.
void logNewLength(const LogRecord::Values& values) {
    const auto newLog2 = static_cast<std::int32_t>(values[2]);
    systemLog("log2SampleLength=%d  waterfallFftLen=%g", static_cast<std::int32_t>(values[0]), values[1]);
    systemLog("setting log2SampleLength=%d  waterfallFftLen=%g", newLog2, values[3]);
    systemLog("BufferMemory malloc: %g", values[3]);
    systemLog("vDSP_create_fftsetup  %d", newLog2);
}

} // namespace

WaterfallTransform::WaterfallTransform(WaterfallParameters& parameters, DeferredLog& log)
    : parameters_(parameters), log_(log), bufferMemory_(kSpectrumFloats) {
    AlignedFloats frame(kLargestFrameLength);
    for (int log2Length = kSmallestLog2Length; log2Length <= kLargestLog2Length; ++log2Length) {
        if (parameters.onlyLog2Length != 0 && parameters.onlyLog2Length != log2Length)
            continue;
        // The frame is overwritten with the result anyway, so the plan may use it as scratch space.
        setups_[static_cast<std::size_t>(log2Length)] = fftwf_plan_dft_r2c_1d(
            1 << log2Length, frame.data(), complexNumbers(bufferMemory_), FFTW_ESTIMATE | FFTW_DESTROY_INPUT);
        if (setups_[static_cast<std::size_t>(log2Length)] == nullptr)
            throw std::bad_alloc();
    }
}

WaterfallTransform::~WaterfallTransform() {
    for (fftwf_plan_s* setup : setups_)
        if (setup != nullptr)
            fftwf_destroy_plan(setup);
}

std::int32_t WaterfallTransform::adoptRequestedLength() {
    const std::int32_t requested = std::clamp(parameters_.fftSizeLog2.load(std::memory_order_relaxed),
                                              kSmallestLog2Length, kLargestLog2Length);
    const std::int32_t inForce = parameters_.log2SampleLength.load(std::memory_order_relaxed);
    const double oldLength = parameters_.waterfallFftLen.load(std::memory_order_relaxed);
    const double newLength = std::ldexp(1.0, requested);
    // The length alone differs when the window's start-up has set it after the first line.
    if (requested != inForce || oldLength != newLength) {
        log_.add({logNewLength, {double(inForce), oldLength, double(requested), newLength}});
        parameters_.log2SampleLength.store(requested, std::memory_order_relaxed);
        parameters_.waterfallFftLen.store(newLength, std::memory_order_relaxed);
    }
    return 1 << requested;
}

std::int32_t WaterfallTransform::transform(AlignedFloats& frame) {
    const std::int32_t length = adoptRequestedLength();
    const auto log2Length = std::countr_zero(static_cast<std::uint32_t>(length));
    fftwf_execute_dft_r2c(setups_[static_cast<std::size_t>(log2Length)], frame.data(),
                          complexNumbers(bufferMemory_));
    const float* const spectrum = bufferMemory_.data();
    float* const packed = frame.data();
    for (std::int32_t i = 0; i < length; ++i)
        packed[i] = 2.0F * spectrum[i];
    // The imaginary part of the zero-frequency term is always 0; the highest frequency's real term takes its
    // place.
    packed[1] = 2.0F * spectrum[length];
    return length;
}

} // namespace sonotrace
