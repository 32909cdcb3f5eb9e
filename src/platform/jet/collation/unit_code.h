#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace jet::collation {

/// What a UTF-16 unit does to a text key of the collation "General" (LCID 0x0409, version 0).
enum class Unit_Class : std::uint8_t {
    ignored,  ///< adds nothing at all
    normal,   ///< inline bytes
    accented, ///< inline bytes and extra bytes
    hidden,   ///< no inline byte; a code byte, kept with the position
    mark,     ///< no inline byte; a value that is added to the extra byte before it
    kana,     ///< inline bytes, a kana flag, in some cases extra bytes
    surrogate ///< its bytes are computed from the unit, not listed
};

/// The bytes of one UTF-16 unit. Sizes are 0 where the class has no such bytes.
struct Unit_Code {
    Unit_Class kind = Unit_Class::ignored;
    std::uint8_t inline_size = 0; ///< 0..4
    std::uint8_t extra_size = 0;  ///< 0..2
    std::uint8_t special = 0;     ///< hidden: code byte; mark: value to add; kana: flag 2 or 3
    std::array<std::uint8_t, 4> inline_storage{};
    std::array<std::uint8_t, 2> extra_storage{};

    std::span<const std::uint8_t> inline_bytes() const {
        return std::span(inline_storage).first(inline_size);
    }
    std::span<const std::uint8_t> extra_bytes() const {
        return std::span(extra_storage).first(extra_size);
    }
};

/// The code of any unit 0..0xFFFF. A look-up only; how codes make a key is the caller's affair.
/// Source: data/jet4-textkeys.tsv.
Unit_Code unit_code(char16_t unit) noexcept;

} // namespace jet::collation
