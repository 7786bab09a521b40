#include "support/RenderBench.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <thread>
#include <unistd.h>

namespace sonotrace {
namespace {

TEST(RenderThreads, WhateverTheUserDoesMeanwhileARecordingIsWhatIsPlayed) {
    const auto path = std::filesystem::temp_directory_path() / ("render" + std::to_string(getpid()));
    std::mt19937 random(3);
    const auto pick = [&random](int end) { return std::uniform_int_distribution(0, end - 1)(random); };
    RenderBench bench;
    std::vector<std::int16_t> played;
    const std::function<void()> actions[] = {
        [&] {
            bench.set(static_cast<std::size_t>(pick(kGeneratorCount)),
                      {pick(20000) / 1.0, pick(360) / 1.0, 0.5, 1, pick(8), pick(2)});
        },
        [&] { bench.setSweep(pick(20000), pick(20000), pick(90000)); },
        [&] { bench.sweep.reverse = pick(2); },
        [&] { bench.sweep.log = pick(2); },
        [&] { bench.sweep.startOneShot(); },
        [&] { bench.output.syncPhases(); },
        [&] { bench.recorder.flush(); }, // rarely, as what follows: it logs
        [&] { bench.recorder.stop(); },
        [&] { bench.recorder.start(path); },
    };
    for (const int lastAction : {9, 7}) { // in the end all is recorded
        bench.recorder.start(path);
        std::atomic<bool> rendering{true};
        std::thread audio([&] {
            played = bench.render(40); // less than the recorder's ring holds
            rendering = false;
        });
        while (rendering)
            actions[pick(pick(20) > 0 ? 6 : lastAction)]();
        audio.join();
    }
    bench.recorder.stop();
    while (!bench.recorder.outcome())
        std::this_thread::yield();
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> recorded(std::istreambuf_iterator<char>(file), {});
    std::filesystem::remove(path);
    // What was played while an earlier recording was being stopped comes first.
    ASSERT_GE(recorded.size(), kWavHeaderBytes + 2 * played.size());
    EXPECT_EQ(
        std::memcmp(recorded.data() + recorded.size() - 2 * played.size(), played.data(), 2 * played.size()),
        0);
}

} // namespace
} // namespace sonotrace
