#include "sweep/SweepStatus.h"

#include "base/SampleRate.h"
#include "generator/SweepParameters.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

/// Where each sample adds `growth` times the frequency.
double octavesPerSecond(double growth) {
    return std::log2(1.0 + growth) * kSampleRate;
}

/// Seconds from one frequency to another, with what a sample adds.
double linearSeconds(double from, double to, double growth) {
    return std::abs(to - from) / (growth * kSampleRate);
}

/// The same where a sample adds `growth` times the frequency, or times 1 Hz where it is lower than that.
double logSeconds(double from, double to, double growth) {
    const double slow = linearSeconds(std::min(from, 1.0), std::min(to, 1.0), growth);
    const double octaves = std::log2(std::max(to, 1.0) / std::max(from, 1.0));
    return slow + octaves / octavesPerSecond(octaves < 0.0 ? -growth : growth);
}

double passSeconds(const SweepParameters& sweep) {
    const bool log = sweep.log.load(kRelaxed) != 0;
    const double growth = sweep.rate.load(kRelaxed) * (log ? kSweepLogLaw : 1.0) / kSampleRate;
    if (!(growth > 0.0))
        return std::numeric_limits<double>::infinity();
    const double start = sweep.startFrequency.load(kRelaxed);
    const double end = sweep.endFrequency.load(kRelaxed);
    const auto seconds = log ? logSeconds : linearSeconds;
    const double there = seconds(start, end, growth);
    return sweep.reverse.load(kRelaxed) != 0 ? there + seconds(end, start, growth) : there;
}

} // namespace

QString describePass(const SweepParameters& sweep) {
    const double seconds = passSeconds(sweep);
    if (!(seconds >= 0.0) || std::isinf(seconds))
        return "A pass never ends";
    QString duration = QString("A pass takes %1 s").arg(seconds, 0, 'g', seconds < 1000.0 ? 3 : 6);
    if (sweep.log.load(kRelaxed) == 0)
        return duration;
    const double octaves = octavesPerSecond(sweep.rate.load(kRelaxed) * kSweepLogLaw / kSampleRate);
    return QString("%1 octaves/s. ").arg(octaves, 0, 'g', 4) + duration;
}

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
