#pragma once

#include "generator/GeneratorBank.h"

#include <array>
#include <cstddef>
#include <span>

namespace sonotrace {

/// Bytes of a settings file: six arrays of 100 entries (frequency, phase, volume left, volume right as
/// doubles, waveform and enabled as 32-bit integers), little-endian, of which the first 13 entries are the
/// generators.
inline constexpr std::size_t kSettingsFileBytes = 4000;

using SettingsOfAll = std::array<GeneratorSettings, kGeneratorCount>;

std::array<std::byte, kSettingsFileBytes> encodeSettingsFile(const SettingsOfAll& settings);

/// Takes the values as they are. What a short file lacks counts as zeros, what a long one has more is
/// ignored.
SettingsOfAll decodeSettingsFile(std::span<const std::byte> bytes);

} // namespace sonotrace
