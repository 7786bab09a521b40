#pragma once

#include "generator/OutputRender.h"
#include "generator/WavRecorder.h"

#include <memory>
#include <vector>

namespace sonotrace {

/// CRC-32 (the one of zip and PNG) of samples as little-endian bytes: pins a whole signal in one literal.
inline std::uint32_t checksum(std::span<const std::int16_t> samples) {
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const std::int16_t sample : samples) {
        const std::uint32_t bits = static_cast<std::uint16_t>(sample);
        for (const std::uint32_t byte : {bits & 0xFFU, bits >> 8U}) {
            crc ^= byte;
            for (int i = 0; i < 8; ++i)
                crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

/// A render with everything it needs.
struct RenderBench {
    GeneratorBank bank;
    SweepParameters sweep;
    /// Alone in memory, so that the address sanitizer sees a read past its end.
    const std::unique_ptr<SineTable> sineTable = std::make_unique<SineTable>();
    WavRecorder recorder;
    OutputRender output{bank, sweep, *sineTable, recorder};

    void set(std::size_t slot, const GeneratorSettings& settings) { bank.slots[slot].store(settings); }

    /// A sweep on both channels, at full scale on the left and half of it on the right.
    void setSweep(double start, double end, double rate) {
        sweep.startFrequency = start;
        sweep.endFrequency = end;
        sweep.rate = rate;
        sweep.amplitudeLeft = 1.0;
        sweep.amplitudeRight = 0.5;
        sweep.leftEnabled = sweep.rightEnabled = sweep.enabled = 1;
    }

    /// The next buffers of 5000 frames, one after the other.
    std::vector<std::int16_t> render(int buffers = 1) {
        std::vector<std::int16_t> samples(static_cast<std::size_t>(buffers) * 10000, -1);
        for (int i = 0; i < buffers; ++i)
            output.render(std::span(samples).subspan(static_cast<std::size_t>(i) * 10000, 10000));
        return samples;
    }
};

} // namespace sonotrace
