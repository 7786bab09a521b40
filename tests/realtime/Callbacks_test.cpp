#include "platform/loopback/LoopbackSystem.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/RenderBench.h"
#include "support/Streams.h"
#include "waterfall/WaterfallFixture.h"

#include <gtest/gtest.h>

#include <cstddef>

// The allocations of the program and its libraries are counted, for each thread by itself. The sanitizers
// bring an allocator of their own, which can be asked to tell.
thread_local std::size_t allocations = 0;

extern "C" {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
void __sanitizer_malloc_hook(const volatile void*, std::size_t) {
    ++allocations;
}
#else
// NOLINTBEGIN(bugprone-reserved-identifier): the C library's own names
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
// NOLINTEND(bugprone-reserved-identifier)

void* malloc(std::size_t bytes) {
    ++allocations;
    return __libc_malloc(bytes);
}
void* calloc(std::size_t count, std::size_t bytes) {
    ++allocations;
    return __libc_calloc(count, bytes);
}
void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    ++allocations;
    return __libc_memalign(alignment, bytes);
}
#endif
}

namespace sonotrace {
namespace {

TEST(Callbacks, DoNotAllocate) {
    LoopbackSystem system(LoopbackSystem::Clock::Manual);
    ManualRunLoop windowThread;
    RenderBench bench;
    Waterfall waterfall;
    waterfall.parameters.waterfallEndFreq = 22050.0;
    waterfall.image.setBounds(800.0, 600.0);
    for (int i = 0; i < kGeneratorCount; ++i)
        bench.set(static_cast<std::size_t>(i), {100.0 + 777.7 * i, 10, 1, 0.5, i % 7, 1});
    bench.setSweep(20, 20000, 90000);
    bench.recorder.start("/dev/null");
    int postedTurns = 0;
    const auto callback = [](auto action) {
        return [action](AudioQueue& self, AudioQueueBuffer& buffer) {
            action(buffer.allSamples());
            self.enqueueBuffer(buffer);
        };
    };
    const auto output = startQueue(system, &SoundSystem::newOutput, kOutputFramesPerBuffer,
                                   callback([&](auto samples) { bench.output.render(samples); }));
    const auto input = startQueue(system, &SoundSystem::newInput, kCaptureFramesPerBuffer,
                                  callback([&](auto samples) { waterfall.analysis.capture(samples); }));
    const auto posted = startQueue(system, &SoundSystem::newInput, kCaptureFramesPerBuffer,
                                   callback([&](auto) { ++postedTurns; }), {}, &windowThread);
    std::size_t count = 0;
    for (int turn = 0; turn < 12 * 13; ++turn) { // 13 are enough for the longest frame
        waterfall.parameters.fftSizeLog2 = kSmallestLog2Length + turn / 13;
        waterfall.parameters.waterfallWindowType = turn % 13;
        waterfall.parameters.waterfallSpeedup = 1 + turn % 4;
        waterfall.parameters.slowSeconds = turn % 5 == 0 ? 0.1 : 0.0;
        waterfall.parameters.lineMerge = static_cast<LineMerge>(turn % 2);
        const std::size_t before = allocations;
        system.advance(11025);
        windowThread.turn();
        count += allocations - before;
        bench.recorder.flush();
    }
    EXPECT_EQ(count, 0U);
    EXPECT_GT(allocations, 100U) << "the streams' own were counted";
    EXPECT_EQ(postedTurns, 12 * 13);
    EXPECT_EQ(waterfall.parameters.waterfallFftLen, kLargestFrameLength);
}

TEST(Callbacks, DoNotAllocateOnTheServersThread) {
    const PrivateServer server;
    PulseSoundSystem system;
    ASSERT_TRUE(system.connected(std::chrono::seconds(10)));
    std::atomic<int> turns = 0;
    std::atomic<std::size_t> count = 0;
    const auto giveBack = [&](AudioQueue& self, AudioQueueBuffer& buffer) {
        const std::size_t before = allocations;
        self.enqueueBuffer(buffer);
        count += allocations - before;
        ++turns;
    };
    const auto input = startQueue(system, &SoundSystem::newInput, 44, giveBack);
    EXPECT_TRUE(waitFor([&] { return turns > 1000; }));
    EXPECT_EQ(count, 0U) << turns;
}

} // namespace
} // namespace sonotrace
