// The output's callback as multiples of real time, and the 60 seconds of thirteen sines that scripts/bench
// sets beside another program's.

#include "generator/OutputRender.h"
#include "generator/WavRecorder.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace sonotrace {
namespace {

constexpr int kFrames = 5000;

struct Bench {
    GeneratorBank bank;
    SweepParameters sweep;
    SineTable sineTable;
    WavRecorder recorder;
    OutputRender output{bank, sweep, sineTable, recorder};
    std::vector<std::int16_t> buffer = std::vector<std::int16_t>(2 * kFrames);

    void voices(std::int32_t waveform) {
        for (int i = 0; i < kGeneratorCount; ++i)
            bank.slots[static_cast<std::size_t>(i)].store(
                {1000.0 + 100.0 * i, 10.0 * i, 1, 0.8, waveform, 1});
    }
};

void countRealTime(benchmark::State& state, int buffersAnIteration = 1) {
    const double seconds = kFrames / 44100.0 * buffersAnIteration;
    state.counters["x_real_time"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * seconds, benchmark::Counter::kIsRate);
}

void callbackOfThirteenVoices(benchmark::State& state) {
    Bench bench;
    bench.voices(static_cast<std::int32_t>(state.range(0)));
    state.SetLabel(waveformTitles()[static_cast<std::size_t>(state.range(0))]);
    for (auto _ : state) {
        bench.output.render(bench.buffer);
        benchmark::DoNotOptimize(bench.buffer.data());
    }
    countRealTime(state);
}
BENCHMARK(callbackOfThirteenVoices)->DenseRange(0, 6);

void callbackOfTheSweep(benchmark::State& state) {
    Bench bench;
    bench.sweep.startFrequency = 20;
    bench.sweep.endFrequency = 20000;
    bench.sweep.rate = 90000;
    bench.sweep.amplitudeLeft = bench.sweep.amplitudeRight = 1;
    bench.sweep.leftEnabled = bench.sweep.rightEnabled = bench.sweep.enabled = 1;
    bench.sweep.log = static_cast<std::int32_t>(state.range(0));
    state.SetLabel(state.range(0) != 0 ? "logarithmic" : "linear");
    for (auto _ : state) {
        bench.output.render(bench.buffer);
        benchmark::DoNotOptimize(bench.buffer.data());
    }
    countRealTime(state);
}
BENCHMARK(callbackOfTheSweep)->DenseRange(0, 1);

void recorderTap(benchmark::State& state) {
    WavRecorder recorder;
    recorder.start("/dev/null");
    const std::vector<std::int16_t> buffer(2 * kFrames);
    for (auto _ : state)
        recorder.tap(buffer);
    countRealTime(state);
}
BENCHMARK(recorderTap);

void oneMinuteOfThirteenSines(benchmark::State& state) {
    constexpr int kBuffers = 60 * 44100 / kFrames + 1;
    Bench bench;
    bench.voices(0);
    for (auto _ : state) {
        for (int i = 0; i < kBuffers; ++i)
            bench.output.render(bench.buffer);
    }
    countRealTime(state, kBuffers);
}
BENCHMARK(oneMinuteOfThirteenSines)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace sonotrace
