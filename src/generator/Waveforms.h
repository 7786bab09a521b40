#pragma once

#include "generator/Mixing.h"
#include "generator/RandomSource.h"
#include "generator/SineTable.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace sonotrace {

/// The waveforms, in the order of the pop-up menu.
enum class WaveformType : std::int32_t { Sine, Square, Sawtooth, Triangle, White, Pink, Pulse, Off };

/// What a voice remembers from buffer to buffer. Audio thread.
struct VoiceState {
    double accumulator = 0;     ///< running phase without the phase offset; its unit is the waveform's own
    std::int32_t direction = 0; ///< of the triangle: 1 rising, 0 falling
};

/// What the voices share. Audio thread.
struct VoiceCommons {
    const SineTable& sineTable;
    RandomSource random;
    double b0 = 0, b1 = 0, b2 = 0; ///< the pink filter's state; all pink voices go through one filter
};

/// A voice that sounds.
struct Voice {
    WaveformType waveform;
    double frequency; ///< Hz
    double phase;     ///< degrees
    StereoGain gain;  ///< the voice's volumes, its share of the full scale already taken
    VoiceState* state;
};

/// Adds the voices' signals, in their order, to a silent buffer of interleaved samples. There are at most
/// kGeneratorCount of them. Whatever the settings hold, it ends in bounded time, and a state they have
/// spoiled recovers with sane settings.
void addVoices(std::span<std::int16_t> interleaved, std::span<const Voice> voices, VoiceCommons& commons);

/// Whether a waveform number makes a signal; "Off" and numbers outside the menu do not.
bool isSounding(std::int32_t waveform);

/// Titles in menu order.
std::vector<std::string> waveformTitles();

} // namespace sonotrace
