#pragma once

#include "platform/jet/collation/unit_code.h"

namespace jet::collation {

/// Nearly every unit fits in 32 bits, which keeps the table small and free of start-up work:
/// bits 0-15 inline bytes (the first one low), 16-23 extra or special byte, 24-26 class,
/// 27-28 number of inline bytes, 29 one extra byte, 30 kana flag 3 (else 2). The few others have
/// class 7 and their place among the exceptions in bits 0-15.
using Packed_Code = std::uint32_t;

constexpr Packed_Code exception_class = 7;

constexpr bool packable(const Unit_Code& code) {
    return code.inline_size <= 2 && code.extra_size <= 1;
}

constexpr Packed_Code packed(const Unit_Code& code) {
    const bool kana = code.kind == Unit_Class::kana;
    const std::uint8_t other = code.extra_size > 0 || kana ? code.extra_storage[0] : code.special;
    Packed_Code bits = code.inline_storage[0] | Packed_Code{code.inline_storage[1]} << 8;
    bits |= Packed_Code{other} << 16;
    bits |= static_cast<Packed_Code>(code.kind) << 24;
    bits |= Packed_Code{code.inline_size} << 27;
    bits |= Packed_Code{code.extra_size} << 29;
    return kana && code.special == 3 ? bits | Packed_Code{1} << 30 : bits;
}

constexpr Unit_Code unpacked(Packed_Code bits) {
    const auto byte = [bits](int shift) { return static_cast<std::uint8_t>(bits >> shift); };
    Unit_Code code;
    code.kind = static_cast<Unit_Class>(bits >> 24 & 7);
    code.inline_size = bits >> 27 & 3;
    code.extra_size = bits >> 29 & 1;
    code.inline_storage[0] = byte(0);
    code.inline_storage[1] = byte(8);
    if (code.kind == Unit_Class::kana)
        code.special = (bits >> 30 & 1) != 0 ? 3 : 2;
    else if (code.extra_size == 0)
        code.special = byte(16);
    if (code.extra_size > 0) code.extra_storage[0] = byte(16);
    return code;
}

} // namespace jet::collation
