#include "generator/SweepSynthesis.h"

#include "base/Numbers.h"
#include "base/SampleRate.h"

#include <algorithm>
#include <cmath>

namespace sonotrace {

namespace {
constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr double kPeriod = kSineTableSize;
constexpr double kPlausibleFrequency = 1e6; // Hz
} // namespace

struct SweepSynthesis::Pass {
    explicit Pass(const SweepParameters& from)
        : start(from.startFrequency.load(kRelaxed)),
          end(from.endFrequency.load(kRelaxed)),
          rate(from.rate.load(kRelaxed)),
          log(from.log.load(kRelaxed) != 0),
          reverse(from.reverse.load(kRelaxed) != 0),
          oneShot(from.oneShot.load() != 0) {}

    double step(double frequency) const {
        if (!log)
            return rate / kSampleRate;
        return (frequency > 1.0 ? frequency * kSweepLogLaw : kSweepLogLaw) * rate / kSampleRate;
    }

    double start, end, rate;
    bool log, reverse, oneShot;
};

void SweepSynthesis::addTo(std::span<std::int16_t> interleaved, double count) {
    const Pass pass(parameters_);
    const double left =
        parameters_.leftEnabled.load(kRelaxed) ? parameters_.amplitudeLeft.load(kRelaxed) / count : 0;
    const double right =
        parameters_.rightEnabled.load(kRelaxed) ? parameters_.amplitudeRight.load(kRelaxed) / count : 0;
    takeOver(pass);

    bool sounding = true;
    double step = 0.0;
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        if (sounding) {
            phase_ += frequency_ * kPeriod / kSampleRate;
            if (phase_ >= kPeriod)
                phase_ -= kPeriod;
            // Frequencies below 0, where a reverse sweep can overshoot to, or above the sample rate. Just
            // below 0 the first entry is still the one that is read.
            if (!(phase_ > -1.0 && phase_ < kPeriod))
                phase_ = wrapTablePosition(phase_);
            const double value = sineTable_[static_cast<std::size_t>(phase_)];
            interleaved[i] = addToSample(interleaved[i], left * value);
            interleaved[i + 1] = addToSample(interleaved[i + 1], right * value);
            step = pass.step(frequency_);
        }
        if (advance(pass, step) && sounding && pass.oneShot) {
            parameters_.endPass();
            sounding = false;
        }
    }
    parameters_.currentFrequency.store(frequency_, kRelaxed);
}

/// Carries out a restart, and frees the frequency from where parameters out of range have taken it: sane
/// limits would never be reached from there.
void SweepSynthesis::takeOver(const Pass& pass) {
    const double furthest = std::max({std::abs(pass.start), std::abs(pass.end), kPlausibleFrequency});
    const bool lost = !(std::abs(frequency_) <= furthest);
    if (parameters_.restart.exchange(0, kRelaxed) != 0 || lost)
        frequency_ = std::isfinite(pass.start) ? pass.start : 0.0;
}

/// Moves the frequency by one step. True when that ends a pass: at the end frequency, or back at the start.
bool SweepSynthesis::advance(const Pass& pass, double step) {
    const bool upward = pass.end > pass.start;
    if (!returning_) {
        frequency_ += upward ? step : -step;
        const bool reached = upward ? frequency_ > pass.end : frequency_ < pass.end;
        if (!reached)
            return false;
        if (pass.reverse) {
            returning_ = true;
            return false;
        }
        frequency_ = pass.start;
        return true;
    }
    frequency_ -= upward ? step : -step;
    const bool reached = upward ? frequency_ < pass.start : frequency_ > pass.start;
    if (!reached)
        return false;
    if (!pass.reverse)
        frequency_ = pass.end;
    returning_ = false;
    return true;
}

} // namespace sonotrace
