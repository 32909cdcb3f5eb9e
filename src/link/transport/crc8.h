#pragma once

#include <cstdint>
#include <span>

namespace link_transport {

/// The checksum of Dallas/Maxim 1-Wire: polynomial x^8 + x^5 + x^4 + 1, lowest bit first.
constexpr std::uint8_t Crc8Step(std::uint8_t crc, std::uint8_t byte) {
    auto rest = static_cast<std::uint8_t>(crc ^ byte);
    for (int bit = 0; bit < 8; ++bit)
        rest = static_cast<std::uint8_t>((rest >> 1) ^ ((rest & 1) != 0 ? 0x8C : 0));
    return rest;
}

constexpr std::uint8_t PacketChecksum(std::span<const std::uint8_t> bytes, std::uint8_t initial) {
    std::uint8_t crc = initial;
    for (const std::uint8_t byte : bytes) crc = Crc8Step(crc, byte);
    return crc;
}

} // namespace link_transport
