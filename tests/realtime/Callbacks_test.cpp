#include "platform/loopback/LoopbackSystem.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/PrivateServer.h"
#include "support/Queues.h"
#include "support/RenderBench.h"
#include "waterfall/WaterfallFixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>

// Every allocation of the program and its libraries is counted, for each thread by itself. The sanitizers
// bring an allocator of their own, which can be asked to tell.
thread_local std::size_t allocations = 0;

extern "C" {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
void __sanitizer_malloc_hook(const volatile void*, std::size_t) {
    ++allocations;
}
#else
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

void* malloc(std::size_t bytes) {
    ++allocations;
    return __libc_malloc(bytes);
}
void* calloc(std::size_t count, std::size_t bytes) {
    ++allocations;
    return __libc_calloc(count, bytes);
}
void* realloc(void* block, std::size_t bytes) {
    ++allocations;
    return __libc_realloc(block, bytes);
}
void* memalign(std::size_t alignment, std::size_t bytes) {
    ++allocations;
    return __libc_memalign(alignment, bytes);
}
void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return memalign(alignment, bytes);
}
#endif
}

namespace sonotrace {
namespace {

template <typename Action>
std::size_t allocationsOf(Action action) {
    const std::size_t before = allocations;
    action();
    return allocations - before;
}

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
    for (std::int32_t log2Length = kSmallestLog2Length; log2Length <= kLargestLog2Length; ++log2Length) {
        std::size_t count = 0;
        for (int window = 0; window < 13; ++window) { // enough for the longest frame
            waterfall.parameters.fftSizeLog2 = log2Length;
            waterfall.parameters.waterfallWindowType = window;
            waterfall.parameters.waterfallSpeedup = 1 + window % 4;
            count += allocationsOf([&] {
                system.advance(11025);
                windowThread.turn();
            });
        }
        EXPECT_EQ(count, 0U) << log2Length;
        bench.recorder.flush();
    }
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
        count += allocationsOf([&] { self.enqueueBuffer(buffer); });
        ++turns;
    };
    const auto input = startQueue(system, &SoundSystem::newInput, 44, giveBack);
    EXPECT_TRUE(waitFor([&] { return turns > 1000; }));
    EXPECT_EQ(count, 0U) << turns;
}

TEST(Ring, GivesEveryValueInOrderToAnotherThread) {
    constexpr int kValues = 5000;
    Ring<int, 4> ring;
    std::thread writer([&ring] {
        for (int i = 0; i < kValues; std::this_thread::yield())
            i += ring.push(i) ? 1 : 0;
    });
    for (int i = 0; i < kValues; std::this_thread::yield()) {
        if (ring.size() == 0)
            continue;
        EXPECT_EQ(ring[0], i++);
        ring.pop();
    }
    writer.join();
}

} // namespace
} // namespace sonotrace
