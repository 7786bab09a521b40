// The spectrum analyzer's work: the transform beside FFTW's of the same size and precision of storage, the
// spectra of one captured buffer, and the trace.

#include "spectrum/SpectrumAnalysis.h"
#include "spectrum/SpectrumFft.h"
#include "spectrum/SpectrumTrace.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace sonotrace {
namespace {

std::vector<double> tone(std::size_t points) {
    std::vector<double> data(2 * points);
    for (std::size_t i = 0; i < points; ++i)
        data[2 * i] = std::floor(12000.0 * std::sin(0.1 * static_cast<double>(i)));
    return data;
}

void transform(benchmark::State& state) {
    const std::vector<double> source = tone(static_cast<std::size_t>(state.range(0)));
    std::vector<double> data = source;
    SpectrumFft fft;
    for (auto _ : state) {
        std::ranges::copy(source, data.begin());
        fft.transform(data);
        benchmark::DoNotOptimize(data.data());
    }
}
BENCHMARK(transform)->Arg(64)->Arg(4096)->Arg(32768)->Arg(131072)->Unit(benchmark::kMicrosecond);

void transformByFftw(benchmark::State& state) {
    const int points = static_cast<int>(state.range(0));
    const std::vector<double> source = tone(static_cast<std::size_t>(points));
    std::vector<double> data = source;
    auto* const complexes = reinterpret_cast<fftw_complex*>(data.data());
    const fftw_plan plan = fftw_plan_dft_1d(points, complexes, complexes, FFTW_BACKWARD, FFTW_ESTIMATE);
    for (auto _ : state) {
        std::ranges::copy(source, data.begin());
        fftw_execute(plan);
        benchmark::DoNotOptimize(data.data());
    }
    fftw_destroy_plan(plan);
}
BENCHMARK(transformByFftw)->Arg(64)->Arg(4096)->Arg(32768)->Arg(131072)->Unit(benchmark::kMicrosecond);

/// One buffer of 11025 frames, with all the spectra due in it.
void captureOfOneBuffer(benchmark::State& state) {
    SpectrumAnalysis analysis([] {});
    analysis.setFftSize(static_cast<std::int32_t>(state.range(0)));
    analysis.setWindowType(1);
    std::vector<std::int16_t> buffer(22050);
    for (std::size_t i = 0; i < buffer.size(); ++i)
        buffer[i] = static_cast<std::int16_t>(8000.0 * std::sin(0.05 * static_cast<double>(i)));
    for (auto _ : state)
        analysis.capture(buffer);
}
BENCHMARK(captureOfOneBuffer)->Arg(64)->Arg(4096)->Arg(131072)->Unit(benchmark::kMicrosecond);

/// The trace of a 1500-point view over the whole spectrum, on both axes.
void trace(benchmark::State& state) {
    constexpr double kFftSize = 131072;
    const std::vector<double> power(262144, 1e6);
    const SpectrumDisplay display{
        .spectrumEndFreq = 44000, .fillMode = 0, .logMode = static_cast<std::int32_t>(state.range(0))};
    state.SetLabel(display.logMode != 0 ? "logarithmic" : "linear");
    SpectrumTrace trace;
    for (auto _ : state) {
        const SpectrumGeometry geometry = spectrumGeometry({0, 0, 1500, 600}, display, kFftSize);
        trace.build(geometry, display, power, kFftSize);
        benchmark::DoNotOptimize(trace.line().data());
    }
}
BENCHMARK(trace)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace sonotrace
