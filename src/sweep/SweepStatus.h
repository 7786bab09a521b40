#pragma once

#include <QString>

namespace sonotrace {

struct SweepParameters;

/// What the sweep does, for the user: off, or running, the frequency it has reached, and why it is silent
/// when it is. Any thread.
QString describeSweep(const SweepParameters& sweep);

} // namespace sonotrace
