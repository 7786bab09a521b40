#include "generator/SettingsFile.h"

#include <algorithm>
#include <bit>

namespace sonotrace {

static_assert(std::endian::native == std::endian::little, "the file's byte order is that of memory");

namespace {

constexpr std::size_t kEntries = 100;

/// The file as it lies in memory.
struct Block {
    double frequency[kEntries];
    double phase[kEntries];
    double volumeLeft[kEntries];
    double volumeRight[kEntries];
    std::int32_t waveform[kEntries];
    std::int32_t enabled[kEntries];
};
static_assert(sizeof(Block) == kSettingsFileBytes);

} // namespace

std::array<std::byte, kSettingsFileBytes> encodeSettingsFile(const SettingsOfAll& settings) {
    Block block{};
    for (std::size_t i = 0; i < settings.size(); ++i) {
        block.frequency[i] = settings[i].frequency;
        block.phase[i] = settings[i].phase;
        block.volumeLeft[i] = settings[i].volumeLeft;
        block.volumeRight[i] = settings[i].volumeRight;
        block.waveform[i] = settings[i].waveform;
        block.enabled[i] = settings[i].enabled;
    }
    return std::bit_cast<std::array<std::byte, kSettingsFileBytes>>(block);
}

SettingsOfAll decodeSettingsFile(std::span<const std::byte> bytes) {
    std::array<std::byte, kSettingsFileBytes> whole{};
    std::ranges::copy(bytes.first(std::min(bytes.size(), whole.size())), whole.begin());
    const auto block = std::bit_cast<Block>(whole);
    SettingsOfAll settings;
    for (std::size_t i = 0; i < settings.size(); ++i) {
        settings[i] = {block.frequency[i],   block.phase[i],    block.volumeLeft[i],
                       block.volumeRight[i], block.waveform[i], block.enabled[i]};
    }
    return settings;
}

} // namespace sonotrace
