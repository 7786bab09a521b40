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

/// Writes the `n` weights of a window to `coeffs` and a line to the system log; with n <= 0 the line only.
/// The windows are periodic (the denominator is n, not n - 1) and normalised neither to their sum nor to
/// their peak. Any thread.
void BuildNewWindowCoeffs(FftWindowType windowType, std::int64_t n, double* coeffs);

} // namespace sonotrace
