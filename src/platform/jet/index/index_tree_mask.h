#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace jet {

/// The bits of an index page that tell where entries end. Bits are numbered from the low end of the
/// first byte.
class Entry_Mask {
public:
    explicit Entry_Mask(std::span<const std::byte> bytes) : bytes_(bytes) {}

    /// The lowest bit that is set at `from` or above.
    std::optional<std::size_t> next(std::size_t from) const {
        for (std::size_t word = from / 64; word < words(); ++word) {
            std::uint64_t bits = load(word);
            if (word == from / 64) bits &= ~std::uint64_t{0} << (from % 64);
            if (bits != 0) return word * 64 + static_cast<std::size_t>(std::countr_zero(bits));
        }
        return {};
    }

    /// The highest bit that is set at `from` or below.
    std::optional<std::size_t> previous(std::size_t from) const {
        for (std::size_t word = from / 64 + 1; word-- > 0;) {
            std::uint64_t bits = load(word);
            if (word == from / 64) bits &= ~std::uint64_t{0} >> (63 - from % 64);
            if (bits != 0) return word * 64 + 63 - static_cast<std::size_t>(std::countl_zero(bits));
        }
        return {};
    }

    std::size_t bits() const { return bytes_.size() * 8; }
    std::size_t words() const { return (bytes_.size() + 7) / 8; }

    /// Bits 64 x word and up, in the order of their numbers; those behind the last byte are 0.
    std::uint64_t load(std::size_t word) const {
        std::uint64_t bits = 0;
        const std::size_t at = word * 8;
        if (at < bytes_.size())
            std::memcpy(&bits, &bytes_[at], at + 8 <= bytes_.size() ? 8 : bytes_.size() - at);
        if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap64(bits);
        return bits;
    }

private:
    std::span<const std::byte> bytes_;
};

} // namespace jet
