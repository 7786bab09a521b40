#include "audio/InputWatch.h"

#include "base/SampleRate.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace sonotrace {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;
constexpr std::int32_t kFullScale = 32767;
constexpr int kClippedRun = 3; // a lone peak may just reach full scale

std::int32_t magnitude(std::int32_t sample) {
    return std::abs(sample);
}

bool isClipped(std::span<const std::int16_t> interleaved) {
    int runs[2] = {0, 0};
    for (std::size_t i = 0; i < interleaved.size(); ++i) {
        int& run = runs[i % 2];
        run = magnitude(interleaved[i]) >= kFullScale ? run + 1 : 0;
        if (run == kClippedRun)
            return true;
    }
    return false;
}

double secondsSince(std::int64_t frame, std::int64_t now) {
    return frame < 0 ? std::numeric_limits<double>::infinity()
                     : static_cast<double>(now - frame) / kSampleRate;
}

} // namespace

void InputWatch::add(std::span<const std::int16_t> interleaved) {
    std::int32_t highest = 0;
    std::int32_t highestFolded = 0;
    const ChannelFold fold = fold_.load(kRelaxed);
    const std::int32_t leftSign = fold == ChannelFold::Right ? 0 : 1;
    const std::int32_t rightSign = fold == ChannelFold::Left ? 0 : fold == ChannelFold::Difference ? -1 : 1;
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        const std::int32_t left = interleaved[i];
        const std::int32_t right = interleaved[i + 1];
        highest = std::max({highest, magnitude(left), magnitude(right)});
        // One more negative number than positive ones has room.
        const std::int32_t folded = leftSign * left + rightSign * right;
        highestFolded = std::max({highestFolded, folded, -1 - folded});
    }
    const std::int64_t frames = frames_.load(kRelaxed) + static_cast<std::int64_t>(interleaved.size() / 2);
    if (highest > 0)
        sound_.store(frames, kRelaxed);
    if (highest >= kFullScale && isClipped(interleaved))
        clipping_.store(frames, kRelaxed);
    if (highestFolded > kFullScale)
        overflow_.store(frames, kRelaxed);
    frames_.store(frames, kRelaxed);
}

void InputWatch::restart() {
    frames_.store(0, kRelaxed);
    clipping_.store(-1, kRelaxed);
    overflow_.store(-1, kRelaxed);
    sound_.store(0, kRelaxed);
}

InputFindings InputWatch::findings() const {
    const std::int64_t now = frames_.load(kRelaxed);
    return {.sinceClipping = secondsSince(clipping_.load(kRelaxed), now),
            .sinceOverflow = secondsSince(overflow_.load(kRelaxed), now),
            .sinceSound = secondsSince(sound_.load(kRelaxed), now)};
}

} // namespace sonotrace
