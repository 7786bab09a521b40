#pragma once

#include <QString>

namespace sonotrace {

struct SweepParameters;

/// What the sweep does, for the user: off, or running, the frequency it has reached, and why it is silent
/// when it is. Any thread.
QString describeSweep(const SweepParameters& sweep);

/// How long a pass takes from start to end (with reverse: and back), and in a logarithmic sweep how many
/// octaves it covers a second. Any thread.
QString describePass(const SweepParameters& sweep);

} // namespace sonotrace
