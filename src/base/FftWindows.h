#pragma once

#include <array>
#include <cstdint>

namespace sonotrace {

/// A data window, counted as in the window menus: an index of kFftWindowTitles. Numbers outside the menu mean
/// the rectangular window.
using FftWindowType = std::int32_t;

/// Titles in menu order.
inline constexpr std::array<const char*, 10> kFftWindowTitles = {
    "Rectangular", "Hann",    "Hamming",          "Tukey",   "Cosine", "Lanczos",
    "Blackman",    "Nuttall", "Blackman-Nuttall", "Flat top"};

/// Writes the `n` weights of a window to `coeffs`; with n <= 0 nothing. The windows are periodic (the
/// denominator is n, not n - 1) and normalised neither to their sum nor to their peak. Any thread.
void fillWindowCoeffs(FftWindowType windowType, std::int64_t n, double* coeffs);

/// Writes the system log's line about a window that is built. Not for audio threads.
void logWindowCoeffs(FftWindowType windowType, std::int64_t n);

/// Both. Not for audio threads.
void BuildNewWindowCoeffs(FftWindowType windowType, std::int64_t n, double* coeffs);

} // namespace sonotrace
