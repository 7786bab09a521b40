#pragma once

#include "generator/OutputRender.h"
#include "generator/WavRecorder.h"

#include <vector>

namespace sonotrace {

/// A render with everything it needs.
struct RenderBench {
    GeneratorBank bank;
    SweepParameters sweep;
    SineTable sineTable;
    WavRecorder recorder;
    OutputRender output{bank, sweep, sineTable, recorder};

    void set(std::size_t slot, const GeneratorSettings& settings) { bank.slots[slot].store(settings); }

    /// The next buffers of 5000 frames, one after the other.
    std::vector<std::int16_t> render(int buffers = 1) {
        std::vector<std::int16_t> samples(static_cast<std::size_t>(buffers) * 10000);
        for (int i = 0; i < buffers; ++i)
            output.render(std::span(samples).subspan(static_cast<std::size_t>(i) * 10000, 10000));
        return samples;
    }
};

} // namespace sonotrace
