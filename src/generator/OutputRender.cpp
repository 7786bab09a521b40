#include "generator/OutputRender.h"

#include "generator/WavRecorder.h"

#include <algorithm>

namespace sonotrace {

OutputRender::OutputRender(const GeneratorBank& bank, SweepParameters& sweep, const SineTable& sineTable,
                           WavRecorder& recorder)
    : bank_(bank),
      sweepParameters_(sweep),
      recorder_(recorder),
      commons_{.sineTable = sineTable, .random = {}},
      sweep_(sweep, sineTable) {}

void OutputRender::render(std::span<std::int16_t> interleaved) {
    if (sync_.exchange(0, std::memory_order_relaxed) != 0)
        resetPhases();

    // Read once: the number of sources and what sounds have to agree.
    std::array<GeneratorSettings, kGeneratorCount> slots;
    double count = 0;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        slots[i] = bank_.slots[i].load();
        if (slots[i].enabled > 0)
            count += 1;
    }
    const bool sweeping = sweepParameters_.enabled.load(std::memory_order_acquire) != 0;
    if (sweeping)
        count += 1;

    std::ranges::fill(interleaved, std::int16_t{0});
    std::array<Voice, kGeneratorCount> voices;
    std::size_t sounding = 0;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        const GeneratorSettings& slot = slots[i];
        if (slot.enabled > 0 && isSounding(slot.waveform)) {
            voices[sounding++] = {.waveform = static_cast<WaveformType>(slot.waveform),
                                  .frequency = slot.frequency,
                                  .phase = slot.phase,
                                  .gain = {slot.volumeLeft / count, slot.volumeRight / count},
                                  .state = &states_[i]};
        }
    }
    addVoices(interleaved, std::span(voices).first(sounding), commons_);
    if (sweeping)
        sweep_.addTo(interleaved, count);
    negate(interleaved);
    recorder_.tap(interleaved);
}

void OutputRender::resetPhases() {
    for (VoiceState& state : states_)
        state.accumulator = 0.0; // a triangle keeps its direction
    sweep_.resetPhase();
}

} // namespace sonotrace
