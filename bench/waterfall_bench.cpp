#include "waterfall/WaterfallAnalysis.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstring>
#include <fftw3.h>
#include <random>
#include <vector>

namespace {

using namespace sonotrace;

// The frames are silent: a transform takes the same time for any numbers, and in place, time after time,
// others would grow beyond all bounds.
void bareTransform(benchmark::State& state, unsigned flags) {
    const int log2Length = static_cast<int>(state.range(0));
    AlignedFloats frame(std::size_t{1} << log2Length);
    AlignedFloats spectrum((std::size_t{1} << log2Length) + 2);
    auto* const output = reinterpret_cast<fftwf_complex*>(spectrum.data());
    fftwf_plan plan =
        fftwf_plan_dft_r2c_1d(1 << log2Length, frame.data(), output, flags | FFTW_DESTROY_INPUT);
    for (auto _ : state) {
        fftwf_execute_dft_r2c(plan, frame.data(), output);
        benchmark::ClobberMemory();
    }
    fftwf_destroy_plan(plan);
    fftwf_forget_wisdom(); // what was measured must not help the plans that are estimated
}

void transformOfALine(benchmark::State& state) {
    WaterfallParameters parameters;
    parameters.fftSizeLog2 = static_cast<std::int32_t>(state.range(0));
    DeferredLog log;
    WaterfallTransform transform(parameters, log);
    AlignedFloats frame(std::size_t{2} * kLargestFrameLength);
    for (auto _ : state) {
        benchmark::DoNotOptimize(transform.transform(frame));
        benchmark::ClobberMemory();
    }
}

void shift600RowsWithMemmove(benchmark::State& state) {
    std::vector<std::uint8_t> picture(std::size_t{ScrollingBitmap::kBytesPerRow} * 1024);
    for (auto _ : state) {
        for (std::size_t y = 0; y < 600; ++y) {
            std::uint8_t* const row = picture.data() + (1023 - y) * ScrollingBitmap::kBytesPerRow;
            std::memmove(row, row + 4, ScrollingBitmap::kBytesPerRow - 4);
        }
        benchmark::ClobberMemory();
    }
}

/// A line of 8192 samples on 600 rows: level, colour and scroll, for a scroll of range(0).
void paintALineOf600Rows(benchmark::State& state) {
    WaterfallParameters parameters;
    parameters.waterfallEndFreq = 22050.0;
    DeferredLog log;
    WaterfallImage image(parameters, log);
    image.setBounds(1000.0, 600.0);
    std::vector<double> magnitudes(8192);
    std::mt19937 random(1);
    for (double& magnitude : magnitudes)
        magnitude = std::exp(std::uniform_real_distribution<double>(0.0, 16.0)(random));
    for (auto _ : state)
        image.drawFFTLine(magnitudes, 8192, 1, static_cast<std::int32_t>(state.range(0)));
}

/// A second of noise with a log2 length of range(0) and a speed-up of range(1), painted on 800 rows. The real
/// time per iteration in milliseconds is the load of the capture thread in tenths of a per cent.
void aSecondOfInput(benchmark::State& state) {
    WaterfallParameters parameters;
    parameters.fftSizeLog2 = static_cast<std::int32_t>(state.range(0));
    parameters.waterfallSpeedup = static_cast<std::int32_t>(state.range(1));
    parameters.waterfallEndFreq = 22050.0;
    DeferredLog log;
    WaterfallImage image(parameters, log);
    image.setBounds(1400.0, 800.0);
    WaterfallAnalysis analysis(parameters, image, log);
    std::vector<std::int16_t> noise(2 * 44100);
    std::mt19937 random(1);
    for (std::int16_t& sample : noise)
        sample = static_cast<std::int16_t>(std::uniform_int_distribution<int>(-8000, 8000)(random));
    for (auto _ : state)
        analysis.capture(noise);
}

/// As for a picture that is saved.
void copyThePicture(benchmark::State& state) {
    WaterfallParameters parameters;
    DeferredLog log;
    const WaterfallImage image(parameters, log);
    std::vector<std::uint8_t> picture(std::size_t{ScrollingBitmap::kBytesPerRow} * ScrollingBitmap::kHeight);
    for (auto _ : state) {
        image.copyRows(0, ScrollingBitmap::kHeight, ScrollingBitmap::kWidth, picture.data(),
                       ScrollingBitmap::kBytesPerRow);
        benchmark::ClobberMemory();
    }
}

BENCHMARK_CAPTURE(bareTransform, estimated, FFTW_ESTIMATE)->DenseRange(6, 17);
BENCHMARK_CAPTURE(bareTransform, measured, FFTW_MEASURE)->DenseRange(6, 13);
BENCHMARK(transformOfALine)->DenseRange(6, 17);
BENCHMARK(shift600RowsWithMemmove)->Unit(benchmark::kMicrosecond);
BENCHMARK(paintALineOf600Rows)->Arg(0)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK(aSecondOfInput)->Args({13, 10})->Args({6, 1})->Args({13, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(copyThePicture)->Unit(benchmark::kMillisecond);

} // namespace
