#include "platform/jet/collation/unit_code.h"

#include "platform/jet/collation/packed_code.h"

namespace jet::collation {
namespace {

// Made by tools/collation_table.cpp: `blocks` tells for each high byte which row of `codes` holds
// its 256 units; rows that are alike (most of the BMP's holes) stand once. `exceptions` follows.
#include "collation_table.inc"

} // namespace

Unit_Code unit_code(char16_t unit) noexcept {
    const Packed_Code bits = codes[blocks[unit >> 8]][unit & 0xFF];
    return (bits >> 24 & 7) == exception_class ? exceptions[bits & 0xFFFF] : unpacked(bits);
}

} // namespace jet::collation
