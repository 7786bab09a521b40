#pragma once

#include <cstdint>
#include <span>

namespace sonotrace {

/// The value between samples of the curve that has nothing above half the sample rate: a sinc under a Hann
/// window of 32 samples to each side. On a sample it is that sample; between them a sine of up to 0.34 of the
/// sample rate is right within 1e-4 of its peak, one of up to 0.43 within 1e-3. Of what lies beyond the ends
/// nothing is taken to be known. `at` counts samples, from 0 to one less than there are.
double bandLimited(std::span<const std::int16_t> samples, double at);
double bandLimited(std::span<const double> samples, double at);

} // namespace sonotrace
