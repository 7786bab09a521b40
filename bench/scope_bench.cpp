// What the oscilloscope computes for a redraw, both trigger searches and the traces' points, the taking in of
// one buffer, and the readings of a block. Nothing is painted.

#include "measure/ChannelDelay.h"
#include "measure/SignalReadings.h"
#include "scope/ScopeCapture.h"
#include "scope/ScopeTrace.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

namespace sonotrace {
namespace {

ScopeControls longestTraces(double level) {
    return {.range = {2, 2}, .trigger = {level, level}, .sweep = 10000};
}

std::vector<std::int16_t> sawtooth() {
    std::vector<std::int16_t> buffer(22050);
    for (std::size_t i = 0; i < buffer.size(); ++i)
        buffer[i] = static_cast<std::int16_t>(i * 37 % 20000 - 10000);
    return buffer;
}

void captureOfOneBuffer(benchmark::State& state) {
    const ScopeControls controls = longestTraces(0);
    ScopeCapture capture(controls, [] {});
    const std::vector<std::int16_t> buffer = sawtooth();
    for (auto _ : state)
        capture.capture(buffer);
}
BENCHMARK(captureOfOneBuffer)->Unit(benchmark::kMicrosecond);

void buildTraces(benchmark::State& state, const ScopeControls& controls) {
    ScopeCapture capture(controls, [] {});
    capture.capture(sawtooth());
    capture.capture(sawtooth());
    ScopeTrace trace;
    for (auto _ : state) {
        trace.build(controls, capture, 1500, 600);
        benchmark::DoNotOptimize(trace.line(1).data());
    }
}

/// 10000 samples of both channels, whose triggers are found at once or not at all.
void searchesAndPoints(benchmark::State& state) {
    // Each search writes a line to the log: keep it from covering the figures, but let it cost its time.
    std::FILE* const log = std::freopen("/dev/null", "w", stderr);
    state.SetLabel(state.range(0) == 0 ? "triggered" : "no trigger");
    buildTraces(state, longestTraces(static_cast<double>(state.range(0))));
    if (log == nullptr)
        state.SkipWithError("the log could not be silenced");
}
BENCHMARK(searchesAndPoints)->Arg(0)->Arg(32767)->Unit(benchmark::kMicrosecond);

/// Around one crossing, with a trace of samples (10000) or of points between them (1000).
void steadyPoints(benchmark::State& state) {
    ScopeControls controls = longestTraces(0);
    controls.sweep = static_cast<double>(state.range(0));
    controls.steady = 1;
    buildTraces(state, controls);
}
BENCHMARK(steadyPoints)->Arg(10000)->Arg(1000)->Unit(benchmark::kMicrosecond);

/// Of a block of two sines, the second a quarter of a period late.
void readings(benchmark::State& state) {
    std::array<std::vector<std::int16_t>, 2> channels;
    const double step = static_cast<double>(state.range(0)) * 2.0 * std::numbers::pi / 44100.0;
    for (std::size_t i = 0; i < kScopeSignal; ++i) {
        const double angle = step * static_cast<double>(i);
        channels[0].push_back(static_cast<std::int16_t>(20000 * std::sin(angle)));
        channels[1].push_back(static_cast<std::int16_t>(-20000 * std::cos(angle)));
    }
    ChannelDelay delay(kScopeSignal, 44100.0);
    for (auto _ : state) {
        for (const auto& channel : channels)
            benchmark::DoNotOptimize(readSignal(channel, 44100.0));
        benchmark::DoNotOptimize(delay.read(channels[0], channels[1]));
    }
}
BENCHMARK(readings)->Arg(100)->Arg(1000)->Arg(15000)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace sonotrace
