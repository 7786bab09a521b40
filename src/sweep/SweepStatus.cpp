#include "sweep/SweepStatus.h"

#include "generator/SweepParameters.h"

#include <cmath>

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr double kLongestPlain = 1e9; // Hz; beyond it the digits are noise

QString frequencyText(double frequency) {
    const bool plain = std::abs(frequency) < kLongestPlain;
    return QString("%1 Hz").arg(frequency, 0, plain ? 'f' : 'g', plain ? 1 : 6);
}

/// Why a running sweep is not heard, or nothing.
QString silenceText(const SweepParameters& sweep) {
    const bool left = sweep.leftEnabled.load(kRelaxed) != 0;
    const bool right = sweep.rightEnabled.load(kRelaxed) != 0;
    if (!left && !right)
        return " – silent: no channel is on";
    const bool sounds = (left && sweep.amplitudeLeft.load(kRelaxed) != 0.0) ||
                        (right && sweep.amplitudeRight.load(kRelaxed) != 0.0);
    return sounds ? "" : " – silent: the amplitude is 0";
}

} // namespace

QString describeSweep(const SweepParameters& sweep) {
    if (sweep.enabled.load(kRelaxed) == 0)
        return "Off";
    const QString what = sweep.oneShot.load(kRelaxed) != 0 ? "One-shot pass at %1" : "Running at %1";
    // A pass that the render has not come to yet is at its start all the same.
    const bool starting = sweep.restart.load(kRelaxed) != 0;
    const auto& frequency = starting ? sweep.startFrequency : sweep.currentFrequency;
    return what.arg(frequencyText(frequency.load(kRelaxed))) + silenceText(sweep);
}

} // namespace sonotrace
