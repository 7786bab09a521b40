#pragma once

#include "generator/GeneratorBank.h"
#include "generator/SineTable.h"
#include "generator/SweepParameters.h"
#include "generator/SweepSynthesis.h"
#include "generator/Waveforms.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <span>

namespace sonotrace {

class WavRecorder;

/// Mixes the generators and the sweep into the output's buffers, inverts the polarity and hands them to the
/// recorder.
class OutputRender {
public:
    /// All arguments outlive the render.
    OutputRender(const GeneratorBank& bank, SweepParameters& sweep, const SineTable& sineTable,
                 WavRecorder& recorder);

    /// Fills a buffer of interleaved stereo samples. Audio thread: no allocation, no lock, no system call.
    void render(std::span<std::int16_t> interleaved);

    /// Starts all voices and the sweep again from phase 0 at the next buffer. Window thread.
    void syncPhases() { sync_.store(1, std::memory_order_relaxed); }

private:
    void resetPhases();

    const GeneratorBank& bank_;
    SweepParameters& sweepParameters_;
    WavRecorder& recorder_;
    std::array<VoiceState, kGeneratorCount> states_{};
    VoiceCommons commons_;
    SweepSynthesis sweep_;
    std::atomic<std::int32_t> sync_{0};
};

} // namespace sonotrace
