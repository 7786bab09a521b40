// A redraw of the instruments, as the window thread does it, without the way to the display: full-scale noise
// or a full-scale square in windows of the usual and of the largest size.

#include "scope/ScopeView.h"
#include "spectrum/SpectrumView.h"
#include "widgets/LevelIndicator.h"

#include <QApplication>
#include <QImage>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <vector>

namespace sonotrace {
namespace {

/// Full-scale stereo of a buffer's length.
std::vector<std::int16_t> noise() {
    std::minstd_rand random(1);
    std::vector<std::int16_t> samples(22050);
    for (std::int16_t& sample : samples)
        sample = static_cast<std::int16_t>(static_cast<int>(random() % 65535) - 32767);
    return samples;
}

std::vector<std::int16_t> squareOf9kHz() {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < 22050; ++i)
        samples.push_back(i / 2 * 18000 / 44100 % 2 == 0 ? 32767 : -32767);
    return samples;
}

void redraw(benchmark::State& state, QWidget& view, QSize size) {
    // Each redraw may write to the log: keep that from covering the figures, but let it cost its time.
    if (std::freopen("/dev/null", "w", stderr) == nullptr)
        state.SkipWithError("the log could not be silenced");
    view.resize(size);
    QImage image(size, QImage::Format_RGB32);
    for (auto _ : state)
        view.render(&image);
}

void spectrum(benchmark::State& state, int fillMode, QSize size) {
    SpectrumDisplay display;
    display.spectrumEndFreq = 22050;
    display.gridMode = 1;
    display.gridBrightness = 1;
    display.fillMode = fillMode;
    SpectrumAnalysis analysis([] {});
    for (int i = 0; i < 8; ++i)
        analysis.capture(noise());
    SpectrumView view;
    view.setModel(analysis, display);
    redraw(state, view, size);
}

/// With triggers that the signal sets off.
void scope(benchmark::State& state, const std::vector<std::int16_t>& signal, double samples, QSize size) {
    const ScopeControls controls{.invert = {true, true}, .sweep = samples};
    ScopeCapture capture(controls, [] {});
    capture.capture(signal);
    capture.capture(signal);
    ScopeView view;
    view.setModel(controls, capture);
    redraw(state, view, size);
}

/// A level that changes each time.
void meter(benchmark::State& state) {
    LevelIndicator view;
    view.resize(view.sizeHint());
    QImage image(view.size(), QImage::Format_RGB32);
    int level = 0;
    for (auto _ : state) {
        view.setDoubleValue(++level % 100 * 0.01);
        view.render(&image);
    }
}

void registerCases() {
    for (const QSize size : {QSize(1500, 800), QSize(1920, 1080)}) {
        const auto add = [size](const std::string& name, auto function, auto... parameters) {
            const std::string label =
                name + "/" + std::to_string(size.width()) + "x" + std::to_string(size.height());
            benchmark::RegisterBenchmark(label.c_str(), function, parameters..., size)
                ->Unit(benchmark::kMillisecond);
        };
        add("spectrum line, noise", spectrum, 0);
        add("spectrum bars, noise", spectrum, 1);
        add("scope of 10000 samples, noise", scope, noise(), 10000.0);
        add("scope of 10000 samples, square", scope, squareOf9kHz(), 10000.0);
        add("scope of 3000 samples, noise", scope, noise(), 3000.0);
    }
    benchmark::RegisterBenchmark("level meter", meter)->Unit(benchmark::kMillisecond);
}

} // namespace
} // namespace sonotrace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    sonotrace::registerCases();
    benchmark::RunSpecifiedBenchmarks();
}
