#pragma once

#include <complex>
#include <span>

namespace sonotrace {

// All samples are as many as a power of two, at least 8; frequencies are in bins, 1 / N of the sample rate.

/// Sum of x w e^(-2 pi i bin (n - middle) / N) with middle = (N - 1) / 2: the line of a spectrum at any
/// frequency.
std::complex<double> lineAt(std::span<const double> samples, std::span<const double> window, double bin);

/// A sine as amplitudes of cosine and sine around the middle of the samples.
struct FittedSine {
    double bin = 0;
    double cosine = 0;
    double sine = 0;
    double meanSquare() const { return (cosine * cosine + sine * sine) / 2.0; }
};

/// The sine that, with a constant, comes nearest to the samples by least squares, weighted with the window's
/// squares, found from a frequency that is right to half a bin and lies half a bin or more from 0 and from N
/// / 2. What is no lone sine gives one within a bin.
FittedSine fitSine(std::span<const double> samples, std::span<const double> window, double bin);

/// Takes a sine off the samples.
void takeOffSine(std::span<double> samples, double bin, double cosine, double sine);

} // namespace sonotrace
