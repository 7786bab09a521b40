#include "generator/Waveforms.h"

#include "base/Numbers.h"
#include "base/SampleRate.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sonotrace {

namespace {

using Samples = std::span<std::int16_t>;
using Routine = void (*)(Samples, const VoiceSettings&, VoiceState&, VoiceCommons&);

constexpr double kFullScale = 32767.0;
constexpr double kPeriod = kSineTableSize;

/// Runs `produce(values)` and then `mix(samples, values)` over the buffer, a block at a time. Two passes,
/// since the first is a chain that has to go value by value and the second is not.
template <typename Value, std::size_t PerFrame = 1, typename Produce, typename Mix>
void inBlocks(Samples samples, Produce produce, Mix mix) {
    std::array<Value, kMixFrames * PerFrame> values;
    while (samples.size() >= 2) {
        const std::size_t frames = std::min(samples.size() / 2, kMixFrames);
        const std::span<Value> block(values.data(), frames * PerFrame);
        produce(block);
        mix(samples.first(2 * frames), block);
        samples = samples.subspan(2 * frames);
    }
}

/// Steps through the sine table and mixes valueAt(index) for each frame. The loop subtracts a period at most
/// once a frame, which keeps the position inside for frequencies from 0 to below the sample rate; others
/// are wrapped in full.
template <typename ValueAt>
void addFromTable(Samples samples, const VoiceSettings& voice, VoiceState& state, ValueAt valueAt) {
    const double offset = voice.phase * kPeriod / 360.0;
    const double step = voice.frequency * kPeriod / kSampleRate;
    double position = wrapTablePosition(state.accumulator + offset);
    const bool tame = step >= 0.0 && step < kPeriod;
    inBlocks<double>(
        samples,
        [&](std::span<double> values) {
            if (tame) {
                for (double& value : values) {
                    position += step;
                    if (position >= kPeriod) [[unlikely]]
                        position -= kPeriod;
                    value = valueAt(static_cast<std::int32_t>(position));
                }
            } else {
                for (double& value : values) {
                    position = wrapTablePosition(position + step);
                    value = valueAt(static_cast<std::int32_t>(position));
                }
            }
        },
        [&](Samples block, std::span<const double> values) { mixMono(block, values, voice.gain); });
    state.accumulator = wrapTablePosition(position - offset);
}

void addSine(Samples samples, const VoiceSettings& voice, VoiceState& state, VoiceCommons& commons) {
    const double* const table = commons.sineTable.data();
    addFromTable(samples, voice, state, [table](std::int32_t index) { return table[index]; });
}

void addSquare(Samples samples, const VoiceSettings& voice, VoiceState& state, VoiceCommons& commons) {
    const double* const table = commons.sineTable.data();
    addFromTable(samples, voice, state,
                 [table](std::int32_t index) { return table[index] > 0.0 ? kFullScale : -kFullScale; });
}

/// A constant level with one sample of the opposite sign each period. The phase is not used.
void addPulse(Samples samples, const VoiceSettings& voice, VoiceState& state, VoiceCommons&) {
    const double step = voice.frequency * kPeriod / kSampleRate;
    double position = wrapTablePosition(state.accumulator);
    inBlocks<double>(
        samples,
        [&](std::span<double> values) {
            for (double& value : values) {
                position += step;
                value = kFullScale;
                if (position >= kPeriod) {
                    position -= kPeriod;
                    value = -kFullScale;
                }
            }
        },
        [&](Samples block, std::span<const double> values) { mixMono(block, values, voice.gain); });
    state.accumulator = wrapTablePosition(position);
}

// The ramps' accumulators are amplitudes, their phase offsets included within a few times full scale. What
// lies beyond this bound comes from settings out of range: there the accumulator starts again.
constexpr double kMostAmplitude = 500000.0;

double tameAmplitude(double amplitude) {
    return std::abs(amplitude) <= kMostAmplitude ? amplitude : 0.0;
}

/// Steps of up to two full scales, which all frequencies up to 22050 Hz give, never take an amplitude further
/// out than it is. Others stand still.
double tameStep(double step) {
    return step >= 0.0 && step <= 2.0 * kFullScale ? step : 0.0;
}

/// Mixes next(amplitude) for each frame.
template <typename Next>
void addRamp(Samples samples, const VoiceSettings& voice, double offset, VoiceState& state, Next next) {
    double amplitude = tameAmplitude(state.accumulator + offset);
    inBlocks<double>(
        samples,
        [&](std::span<double> values) {
            for (double& value : values)
                value = next(amplitude);
        },
        [&](Samples block, std::span<const double> values) { mixMono(block, values, voice.gain); });
    state.accumulator = tameAmplitude(amplitude - offset);
}

/// A falling ramp: the whole output is negated later, and rises then.
void addSawtooth(Samples samples, const VoiceSettings& voice, VoiceState& state, VoiceCommons&) {
    const double offset = (voice.phase + voice.phase) * kFullScale / 360.0;
    const double step = tameStep(voice.frequency / kSampleRate * 65534.0);
    addRamp(samples, voice, offset, state, [step](double& amplitude) {
        amplitude += step;
        if (amplitude >= kFullScale) [[unlikely]]
            amplitude -= 65534.0;
        return -amplitude;
    });
}

void addTriangle(Samples samples, const VoiceSettings& voice, VoiceState& state, VoiceCommons&) {
    const double offset = voice.phase * 4.0 * kFullScale / 360.0;
    const double step = tameStep(voice.frequency / kSampleRate * 131068.0);
    std::int32_t direction = state.direction;
    addRamp(samples, voice, offset, state, [step, &direction](double& amplitude) {
        if (direction == 1) {
            amplitude += step;
            if (amplitude >= kFullScale) {
                amplitude = kFullScale - (amplitude - kFullScale);
                direction = 0;
            }
        } else {
            amplitude -= step;
            if (amplitude <= -kFullScale) {
                amplitude = -kFullScale - (amplitude + kFullScale);
                direction = 1;
            }
        }
        return amplitude;
    });
    state.direction = direction;
}

/// Independent noise on both channels. It is unipolar.
void addWhite(Samples samples, const VoiceSettings& voice, VoiceState&, VoiceCommons& commons) {
    inBlocks<std::int32_t, 2>(
        samples,
        [&](std::span<std::int32_t> values) {
            std::array<std::uint32_t, 2 * kMixFrames> draws;
            commons.random.draw({draws.data(), values.size()});
            for (std::size_t i = 0; i < values.size(); ++i)
                values[i] = static_cast<std::int32_t>(draws[i] & 0x7FFFU);
        },
        [&](Samples block, std::span<const std::int32_t> values) { mixStereo(block, values, voice.gain); });
}

/// White noise through a three-pole filter of about -3 dB an octave; the same on both channels.
void addPink(Samples samples, const VoiceSettings& voice, VoiceState&, VoiceCommons& commons) {
    inBlocks<double>(
        samples,
        [&](std::span<double> values) {
            std::array<std::uint32_t, kMixFrames> draws;
            commons.random.draw({draws.data(), values.size()});
            double b0 = commons.b0;
            double b1 = commons.b1;
            double b2 = commons.b2;
            for (std::size_t i = 0; i < values.size(); ++i) {
                const auto draw = static_cast<std::int32_t>(draws[i] & 0xFFFFU);
                const double white = (static_cast<double>(draw) - 32768.0) * 3.0517578125e-05;
                b0 = 0.99765 * b0 + 0.099046 * white;
                b2 = 0.57 * b2 + 1.0526913 * white;
                b1 = 0.963 * b1 + 0.2965164 * white;
                values[i] = (b1 + b0 + b2 + 0.1848 * white) * 0.17;
            }
            commons.b0 = b0;
            commons.b1 = b1;
            commons.b2 = b2;
        },
        [&](Samples block, std::span<const double> values) { mixClamped(block, values, voice.gain); });
}

struct Waveform {
    const char* title;
    Routine routine; ///< null: silent
};

/// In menu order; the row is the WaveformType.
constexpr Waveform kWaveforms[] = {
    {"Sine", addSine},   {"Square", addSquare}, {"Sawtooth", addSawtooth}, {"Triangle", addTriangle},
    {"White", addWhite}, {"Pink", addPink},     {"Pulse", addPulse},       {"Off", nullptr}};

} // namespace

bool isSounding(std::int32_t waveform) {
    return waveform >= 0 && waveform < static_cast<std::int32_t>(std::size(kWaveforms)) &&
           kWaveforms[waveform].routine != nullptr;
}

void addVoice(WaveformType waveform, std::span<std::int16_t> interleaved, const VoiceSettings& settings,
              VoiceState& state, VoiceCommons& commons) {
    const auto row = static_cast<std::int32_t>(waveform);
    if (isSounding(row))
        kWaveforms[row].routine(interleaved, settings, state, commons);
}

std::vector<std::string> waveformTitles() {
    std::vector<std::string> titles;
    for (const Waveform& waveform : kWaveforms)
        titles.emplace_back(waveform.title);
    return titles;
}

} // namespace sonotrace
