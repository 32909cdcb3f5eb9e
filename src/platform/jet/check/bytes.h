#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace jet::check {

/// Bytes of a file that nobody vouches for: what lies beyond the end reads as 0. Little-endian
/// unless a name says otherwise.
class Bytes {
public:
    Bytes() = default;
    explicit Bytes(std::span<const std::byte> bytes) : bytes_(bytes) {}

    std::size_t size() const { return bytes_.size(); }
    bool has(std::size_t at, std::size_t length) const {
        return at <= size() && length <= size() - at;
    }
    std::span<const std::byte> span() const { return bytes_; }

    std::uint32_t u8(std::size_t at) const {
        return at < size() ? std::to_integer<std::uint32_t>(bytes_[at]) : 0;
    }
    std::uint32_t u16(std::size_t at) const { return u8(at) | u8(at + 1) << 8; }
    std::uint32_t u32(std::size_t at) const { return u16(at) | u16(at + 2) << 16; }
    std::uint64_t u64(std::size_t at) const { return u32(at) | std::uint64_t{u32(at + 4)} << 32; }
    std::uint32_t u32_be(std::size_t at) const {
        return u8(at) << 24 | u8(at + 1) << 16 | u8(at + 2) << 8 | u8(at + 3);
    }

    /// At most `length` bytes from `at`, cut at the end.
    Bytes part(std::size_t at, std::size_t length) const {
        const std::size_t begin = std::min(at, size());
        return Bytes(bytes_.subspan(begin, std::min(length, size() - begin)));
    }
    Bytes from(std::size_t at) const { return part(at, size()); }

private:
    std::span<const std::byte> bytes_;
};

} // namespace jet::check
