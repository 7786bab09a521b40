#include "waterfall/WaterfallAnalysis.h"
#include "waterfall/WaterfallView.h"

#include <QApplication>
#include <QImage>

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

using namespace sonotrace;

/// A redraw of the largest view for each quarter of a second of noise, with the settings of the first run;
/// the lines themselves are not counted.
void redrawTheView1536By1024(benchmark::State& state) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = 1;
    char name[] = "waterfall_bench";
    char* argv[] = {name, nullptr};
    const QApplication application(argc, argv);
    WaterfallParameters parameters;
    parameters.fftSizeLog2 = 13;
    parameters.waterfallSpeedup = 10;
    parameters.waterfallEndFreq = 20000.0;
    DeferredLog log;
    WaterfallImage image(parameters, log);
    WaterfallAnalysis analysis(parameters, image, log);
    std::vector<std::int16_t> noise(2 * 11025);
    std::minstd_rand random(1);
    for (std::int16_t& sample : noise)
        sample = static_cast<std::int16_t>(static_cast<int>(random() % 65535) - 32767);
    WaterfallView view;
    view.setModel(image);
    view.resize(ScrollingBitmap::kWidth, ScrollingBitmap::kHeight);
    QImage screen(view.size(), QImage::Format_RGB32);
    for (auto _ : state) {
        state.PauseTiming();
        analysis.capture(noise);
        state.ResumeTiming();
        view.render(&screen);
    }
}
BENCHMARK(redrawTheView1536By1024)->Unit(benchmark::kMillisecond);

} // namespace
