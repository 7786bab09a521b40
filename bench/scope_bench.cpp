// What the oscilloscope computes for a redraw, both trigger searches and the traces' points, and the taking
// in of one buffer. Nothing is painted.

#include "scope/ScopeCapture.h"
#include "scope/ScopeTrace.h"

#include <benchmark/benchmark.h>

#include <cstdio>
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

/// 10000 samples of both channels, whose triggers are found at once or not at all.
void searchesAndPoints(benchmark::State& state) {
    // Each search writes a line to the log: keep it from covering the figures, but let it cost its time.
    std::FILE* const log = std::freopen("/dev/null", "w", stderr);
    const ScopeControls controls = longestTraces(static_cast<double>(state.range(0)));
    state.SetLabel(state.range(0) == 0 ? "triggered" : "no trigger");
    ScopeCapture capture(controls, [] {});
    capture.capture(sawtooth());
    capture.capture(sawtooth());
    ScopeTrace trace;
    for (auto _ : state) {
        trace.build(controls, capture, 1500, 600);
        benchmark::DoNotOptimize(trace.line(1).data());
    }
    if (log == nullptr)
        state.SkipWithError("the log could not be silenced");
}
BENCHMARK(searchesAndPoints)->Arg(0)->Arg(32767)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace sonotrace
