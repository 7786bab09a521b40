// A redraw of a view of 1500 x 800 points, as the window thread does it.

#include "scope/ScopeView.h"
#include "spectrum/SpectrumView.h"

#include <QApplication>
#include <QImage>

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace sonotrace {
namespace {

/// Noise of half the full scale on both channels: the busiest picture.
std::vector<std::int16_t> noise(std::size_t frames) {
    std::minstd_rand random(1);
    std::vector<std::int16_t> samples(2 * frames);
    for (std::int16_t& sample : samples)
        sample = static_cast<std::int16_t>(static_cast<int>(random() % 16384) - 8192);
    return samples;
}

void redraw(benchmark::State& state, QWidget& view) {
    view.resize(1500, 800);
    QImage image(view.size(), QImage::Format_RGB32);
    for (auto _ : state)
        view.render(&image);
}

void redrawSpectrum(benchmark::State& state) {
    SpectrumDisplay display;
    display.spectrumEndFreq = 22050;
    display.gridMode = 1;
    display.gridBrightness = 1;
    display.fillMode = static_cast<std::int32_t>(state.range(0));
    SpectrumAnalysis analysis([] {});
    for (int i = 0; i < 8; ++i)
        analysis.capture(noise(11025));
    SpectrumView view;
    view.setModel(analysis, display);
    state.SetLabel(state.range(0) != 0 ? "bars" : "line");
    redraw(state, view);
}
BENCHMARK(redrawSpectrum)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);

/// The longest traces, with triggers that noise sets off.
void redrawScope(benchmark::State& state) {
    const ScopeControls controls{.invert = {true, true}, .sweep = 10000.0};
    ScopeCapture capture(controls, [] {});
    capture.capture(noise(11025));
    capture.capture(noise(11025));
    ScopeView view;
    view.setModel(controls, capture);
    redraw(state, view);
}
BENCHMARK(redrawScope)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace sonotrace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
