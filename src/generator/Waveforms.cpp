#include "generator/Waveforms.h"

#include "base/SampleRate.h"
#include "base/WideVectors.h"
#include "generator/GeneratorBank.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sonotrace {

namespace {

using Samples = std::span<std::int16_t>;

constexpr double kFullScale = 32767.0;
constexpr double kPeriod = kSineTableSize;

struct Waveform {
    const char* title;
    double period; ///< how far it goes in one, in its accumulator's unit; 0: noise, or silent
};

/// In menu order; the row is the WaveformType.
constexpr Waveform kWaveforms[] = {{"Sine", kPeriod},
                                   {"Square", kPeriod},
                                   {"Sawtooth", 2.0 * kFullScale},
                                   {"Triangle", 4.0 * kFullScale},
                                   {"White", 0.0},
                                   {"Pink", 0.0},
                                   {"Pulse", kPeriod},
                                   {"Off", 0.0}};

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

/// Calls add(block, frames) for the samples, a block at a time.
template <typename Add>
void inBlocks(Samples samples, Add add) {
    while (samples.size() >= 2) {
        const std::size_t frames = std::min(samples.size() / 2, kMixFrames);
        add(samples.first(2 * frames), frames);
        samples = samples.subspan(2 * frames);
    }
}

using Four [[gnu::vector_size(32)]] = double;
using FourMasks [[gnu::vector_size(32)]] = std::int64_t;

/// A number for each voice.
struct Lanes {
    double& operator[](std::size_t lane) { return reinterpret_cast<double*>(fours)[lane]; }

    Four fours[(kGeneratorCount + 3) / 4] = {};
};

/// The ways of voices through their periods, side by side because each is a chain that has to go frame by
/// frame. All go on by a step and, from the top on, back by a span.
struct Ways {
    std::size_t count = 0;
    bool inTable = true; ///< the values are the table's at the positions, otherwise position x sign
    bool fit = true;     ///< all values are within the full scale
    Lanes position, step, top, span;
    Lanes offset;  ///< the phase's part of the position
    Lanes farStep; ///< instead of a step that goes back, or on by a period and more
    Lanes sign;    ///< -1 while a triangle falls, which goes as a rising one does
    Lanes turn;    ///< what the sign loses of itself at the top: 2 for a triangle
    Lanes before;  ///< positions before the block
    alignas(32) std::array<MixValues, kGeneratorCount> values;
};

/// Takes `Count` lanes through the next frames, four at a time: only written for them, and kept in registers,
/// are the chains as fast as the processor can be.
template <std::size_t Count, bool InTable>
[[gnu::always_inline]] inline void walk(Ways& ways, std::size_t frames, const double* table) {
    Lanes position = ways.before = ways.position;
    Lanes sign = ways.sign;
    for (std::size_t i = 0; i < frames; ++i) {
        for (std::size_t four = 0; 4 * four < Count; ++four) {
            Four& at = position.fours[four];
            at += ways.step.fours[four];
            const auto over = at >= ways.top.fours[four];
            at -= reinterpret_cast<Four>(over & reinterpret_cast<FourMasks>(ways.span.fours[four]));
            Four value = at;
            if constexpr (!InTable) {
                sign.fours[four] *=
                    1.0 - reinterpret_cast<Four>(over & reinterpret_cast<FourMasks>(ways.turn.fours[four]));
                value *= sign.fours[four];
            }
            for (std::size_t lane = 0; lane < 4 && 4 * four + lane < Count; ++lane)
                ways.values[4 * four + lane][i] =
                    InTable ? table[static_cast<std::ptrdiff_t>(value[lane])] : value[lane];
        }
    }
    ways.position = position;
    ways.sign = sign;
}

SONOTRACE_WIDE_VECTORS void walk(Ways& ways, std::size_t frames, const double* table) {
    if (ways.count <= 4)
        ways.inTable ? walk<4, true>(ways, frames, table) : walk<4, false>(ways, frames, table);
    else
        ways.inTable ? walk<kGeneratorCount, true>(ways, frames, table)
                     : walk<kGeneratorCount, false>(ways, frames, table);
}

SONOTRACE_WIDE_VECTORS void lookUp(MixValues& values, std::size_t frames, const double* table) {
    for (std::size_t i = 0; i < frames; ++i)
        values[i] = table[static_cast<std::int32_t>(values[i])];
}

SONOTRACE_WIDE_VECTORS void makeSquare(MixValues& values, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i)
        values[i] = values[i] > 0.0 ? kFullScale : -kFullScale;
}

/// A constant level with one sample of the opposite sign each period.
SONOTRACE_WIDE_VECTORS void makePulse(MixValues& values, std::size_t frames, double before, double step) {
    const MixValues positions = values;
    values[0] = before + step >= kPeriod ? -kFullScale : kFullScale;
    for (std::size_t i = 1; i < frames; ++i)
        values[i] = positions[i - 1] + step >= kPeriod ? -kFullScale : kFullScale;
}

bool isRamp(WaveformType waveform) {
    return waveform == WaveformType::Sawtooth || waveform == WaveformType::Triangle;
}

/// Brings a voice's amplitude, or its position in the table, back to where it may be.
double settle(WaveformType waveform, double value) {
    return isRamp(waveform) ? tameAmplitude(value) : wrapTablePosition(value);
}

void start(Ways& ways, const Voice& voice) {
    const std::size_t lane = ways.count++;
    const double period = kWaveforms[static_cast<std::size_t>(voice.waveform)].period;
    const bool pulse = voice.waveform == WaveformType::Pulse; // which does not use the phase
    const bool triangle = voice.waveform == WaveformType::Triangle;
    const bool ramp = isRamp(voice.waveform);
    ways.offset[lane] = pulse ? 0.0 : voice.phase * period / 360.0;
    const double value = settle(voice.waveform, voice.state->accumulator + ways.offset[lane]);
    const double step =
        ramp ? tameStep(voice.frequency / kSampleRate * period) : voice.frequency * period / kSampleRate;
    const bool far = !ramp && !pulse && !(step >= 0.0 && step < period);
    (far ? ways.farStep : ways.step)[lane] = step;
    ways.top[lane] = ramp ? kFullScale : period;
    ways.span[lane] = ramp ? 2.0 * kFullScale : period;
    ways.turn[lane] = triangle ? 2.0 : 0.0;
    ways.sign[lane] = triangle && voice.state->direction != 1 ? -1.0 : 1.0;
    ways.position[lane] = ways.sign[lane] * value;
    ways.inTable = ways.inTable && voice.waveform <= WaveformType::Square && !far;
    ways.fit = ways.fit && std::abs(value) <= kFullScale;
}

void finish(Ways& ways, std::size_t lane, const Voice& voice) {
    const double value = ways.sign[lane] * ways.position[lane];
    voice.state->accumulator = settle(voice.waveform, value - ways.offset[lane]);
    if (voice.waveform == WaveformType::Triangle)
        voice.state->direction = ways.sign[lane] > 0.0 ? 1 : 0;
}

/// Makes a voice's values of what its way has given.
void shape(Ways& ways, std::size_t lane, WaveformType waveform, std::size_t frames, const double* table) {
    MixValues& values = ways.values[lane];
    for (std::size_t i = 0; ways.farStep[lane] != 0.0 && i < frames; ++i)
        values[i] = ways.position[lane] = wrapTablePosition(ways.position[lane] + ways.farStep[lane]);
    if (!ways.inTable && waveform <= WaveformType::Square)
        lookUp(values, frames, table);
    if (waveform == WaveformType::Square)
        makeSquare(values, frames);
    if (waveform == WaveformType::Pulse)
        makePulse(values, frames, ways.before[lane], ways.step[lane]);
}

/// `fits`: no sum has to be wrapped. A ramp that settings have moved out of the full scale clears it.
void addPeriodic(Samples samples, std::span<const Voice> voices, const double* table, bool& fits) {
    Ways ways;
    for (const Voice& voice : voices)
        start(ways, voice);
    fits = fits && ways.fit;
    inBlocks(samples, [&](Samples block, std::size_t frames) {
        walk(ways, frames, table);
        MixBlock sums;
        load(sums, block);
        for (std::size_t i = 0; i < voices.size(); ++i) {
            shape(ways, i, voices[i].waveform, frames, table);
            // A falling sawtooth: the whole output is negated later, and rises then.
            const double sign = voices[i].waveform == WaveformType::Sawtooth ? -1.0 : 1.0;
            const StereoGain gain = {sign * voices[i].gain.left, sign * voices[i].gain.right};
            mix(sums, ways.values[i], frames, gain, fits);
        }
        store(sums, block);
    });
    for (std::size_t i = 0; i < voices.size(); ++i)
        finish(ways, i, voices[i]);
}

/// Independent noise on both channels. It is unipolar.
void addWhite(Samples samples, const Voice& voice, VoiceCommons& commons) {
    inBlocks(samples, [&](Samples block, std::size_t) {
        std::array<std::uint32_t, 2 * kMixFrames> draws;
        commons.random.draw({draws.data(), block.size()});
        mixDraws(block, draws.data(), voice.gain);
    });
}

/// White noise through a three-pole filter of about -3 dB an octave; the same on both channels.
void addPink(Samples samples, const Voice& voice, VoiceCommons& commons) {
    inBlocks(samples, [&](Samples block, std::size_t frames) {
        std::array<std::uint32_t, kMixFrames> draws;
        commons.random.draw({draws.data(), frames});
        MixValues values;
        double b0 = commons.b0;
        double b1 = commons.b1;
        double b2 = commons.b2;
        for (std::size_t i = 0; i < frames; ++i) {
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
        mixClamped(block, values, voice.gain);
    });
}

/// Whether no sum of the voices has to be wrapped.
bool fit(std::span<const Voice> voices) {
    StereoGain peak;
    for (const Voice& voice : voices) {
        const double own = voice.waveform == WaveformType::Pink ? 9.0 : 1.0; // its filter gives no more
        peak.left += own * std::abs(voice.gain.left);
        peak.right += own * std::abs(voice.gain.right);
    }
    return peak.left < 1.00001 && peak.right < 1.00001; // shares of 1 may add up to a little more
}

bool isNoise(const Voice& voice) {
    return voice.waveform == WaveformType::White || voice.waveform == WaveformType::Pink;
}

} // namespace

bool isSounding(std::int32_t waveform) {
    return waveform >= 0 && waveform < static_cast<std::int32_t>(WaveformType::Off);
}

void addVoices(Samples interleaved, std::span<const Voice> voices, VoiceCommons& commons) {
    bool fits = fit(voices);
    while (!voices.empty()) {
        // The noises share one sequence of random numbers, which each draws from for the whole buffer.
        const auto count = static_cast<std::size_t>(std::ranges::find_if(voices, isNoise) - voices.begin());
        if (count > 0)
            addPeriodic(interleaved, voices.first(count), commons.sineTable.data(), fits);
        else if (voices.front().waveform == WaveformType::White)
            addWhite(interleaved, voices.front(), commons);
        else
            addPink(interleaved, voices.front(), commons);
        voices = voices.subspan(std::max<std::size_t>(count, 1));
    }
}

std::vector<std::string> waveformTitles() {
    std::vector<std::string> titles;
    for (const Waveform& waveform : kWaveforms)
        titles.emplace_back(waveform.title);
    return titles;
}

} // namespace sonotrace
