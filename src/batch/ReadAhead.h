#pragma once

#include "batch/AudioFile.h"
#include "batch/BlockQueue.h"

#include <cstddef>
#include <cstdint>
#include <future>
#include <span>
#include <type_traits>
#include <vector>

namespace sonotrace {

/// Reads a file to its end on a thread of its own and gives `take` one piece of interleaved samples after the
/// other on this one: 16-bit integers or real numbers.
template <typename Sample, typename Take>
void readAhead(AudioFile& file, Take take) {
    constexpr std::size_t kSamples = std::size_t{1} << 17U; // stays in the processor's cache
    constexpr std::size_t kBlocks = 6;
    using Block = std::vector<Sample>;
    BlockQueue<Block> read(kBlocks);
    BlockQueue<Block> spare(kBlocks);
    for (std::size_t i = 0; i < kBlocks; ++i)
        spare.push(Block(kSamples));
    auto reading = std::async(std::launch::async, [&] {
        const struct Finish {
            BlockQueue<Block>& queue;
            ~Finish() { queue.finish(); }
        } finish{read};
        while (auto block = spare.pop()) {
            std::size_t frames = 0;
            if constexpr (std::is_same_v<Sample, double>)
                frames = file.readReal(*block);
            else
                frames = file.read(*block);
            const bool isLast = frames < block->size() / 2;
            block->resize(2 * frames);
            if (!read.push(std::move(*block)) || isLast)
                return;
        }
    });
    const struct Abandon { // when `take` throws, the reader must not wait for it
        BlockQueue<Block>& read;
        BlockQueue<Block>& spare;
        ~Abandon() {
            read.abandon();
            spare.abandon();
        }
    } abandon{read, spare};
    while (auto block = read.pop()) {
        take(std::span<const Sample>(*block));
        spare.push(std::move(*block));
    }
    reading.get();
}

} // namespace sonotrace
