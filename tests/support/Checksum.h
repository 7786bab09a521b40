#pragma once

#include <cstdint>
#include <span>

namespace sonotrace {

/// CRC-32 (the one of zip and PNG) of samples as little-endian bytes: pins a whole signal in one literal.
inline std::uint32_t checksum(std::span<const std::int16_t> samples) {
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const std::int16_t sample : samples) {
        const std::uint32_t bits = static_cast<std::uint16_t>(sample);
        for (const std::uint32_t byte : {bits & 0xFFU, bits >> 8U}) {
            crc ^= byte;
            for (int i = 0; i < 8; ++i)
                crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

} // namespace sonotrace
