// The output's callback as multiples of real time, and the 60 seconds of thirteen sines that scripts/bench
// sets beside another program's; and the same sines beside calls of sin().

#include "generator/OutputRender.h"
#include "generator/WavRecorder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>
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

/// Beside what it takes to call sin() for each voice and sample: in turn, because machines are noisy, and by
/// the fastest of each.
void thirteenSinesBesideCallsOfSin(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    Bench bench;
    bench.voices(0);
    const auto fastest = [](Clock::duration& best, const auto& run) {
        const auto start = Clock::now();
        run();
        best = std::min(best, Clock::now() - start);
    };
    auto ours = Clock::duration::max();
    auto plain = Clock::duration::max();
    for (auto _ : state) {
        fastest(ours, [&] { bench.output.render(bench.buffer); });
        fastest(plain, [&] {
            for (int frame = 0; frame < kFrames; ++frame) {
                double sum = 0;
                for (int voice = 0; voice < kGeneratorCount; ++voice)
                    sum += std::sin(2 * std::numbers::pi * (1000.0 + 100.0 * voice) / 44100.0 * frame);
                const auto sample = static_cast<std::int16_t>(sum / kGeneratorCount * 32767.0);
                bench.buffer[static_cast<std::size_t>(2 * frame)] = sample;
                bench.buffer[static_cast<std::size_t>(2 * frame + 1)] = sample;
            }
        });
        benchmark::DoNotOptimize(bench.buffer.data());
    }
    using Milliseconds = std::chrono::duration<double, std::milli>;
    state.counters["render_ms"] = Milliseconds(ours).count();
    state.counters["sin_ms"] = Milliseconds(plain).count();
    state.counters["ratio"] = static_cast<double>(plain.count()) / static_cast<double>(ours.count());
}
BENCHMARK(thirteenSinesBesideCallsOfSin);

} // namespace
} // namespace sonotrace
