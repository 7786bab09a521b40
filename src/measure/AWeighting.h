#pragma once

namespace sonotrace {

/// Power gain of the A curve, 1 at 1 kHz, for a frequency in Hz.
double aWeighting(double frequencyHz);

} // namespace sonotrace
