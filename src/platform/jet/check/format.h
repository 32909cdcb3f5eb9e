#pragma once

#include <cstdint>

namespace jet::check {

/// The numbers in which the two generations of the format differ. Offsets count from the start of
/// the page, of the joined definition, or of the record that they belong to.
struct Format {
    bool jet4;
    std::uint32_t page_size;
    std::uint32_t commit_bytes; ///< of page 0: 256 pairs

    // data pages
    std::uint32_t slot_count, slots;
    std::uint32_t count_width; ///< bytes of the column count, and of each offset of a row

    // table definition: header
    std::uint32_t rows, autonumber, max_columns, variable, columns, logicals, reals, owned, free;
    std::uint32_t blocks; ///< where the blocks after the header begin

    // table definition: records
    std::uint32_t real_count;
    std::uint32_t column, number, slot, collation, flags, fixed_offset, length;
    std::uint32_t real, real_columns, map, root, real_flags;
    std::uint32_t logical, logical_body; ///< logical_body: where number, real index ... begin
    std::uint32_t name_length;           ///< bytes of a name's length

    // index pages
    std::uint32_t previous, next, tail, prefix, mask, entries;

    std::uint32_t entry_room() const { return page_size - entries; }
    std::uint32_t pages_per_map_page() const { return (page_size - 4) * 8; }
};

inline constexpr Format jet3{.jet4 = false,
                             .page_size = 2048,
                             .commit_bytes = 0x600,
                             .slot_count = 8,
                             .slots = 10,
                             .count_width = 1,
                             .rows = 0x0C,
                             .autonumber = 0x10,
                             .max_columns = 0x15,
                             .variable = 0x17,
                             .columns = 0x19,
                             .logicals = 0x1B,
                             .reals = 0x1F,
                             .owned = 0x23,
                             .free = 0x27,
                             .blocks = 0x2B,
                             .real_count = 8,
                             .column = 18,
                             .number = 1,
                             .slot = 3,
                             .collation = 9,
                             .flags = 13,
                             .fixed_offset = 14,
                             .length = 16,
                             .real = 39,
                             .real_columns = 0,
                             .map = 30,
                             .root = 34,
                             .real_flags = 38,
                             .logical = 20,
                             .logical_body = 0,
                             .name_length = 1,
                             .previous = 8,
                             .next = 12,
                             .tail = 16,
                             .prefix = 0x14,
                             .mask = 0x16,
                             .entries = 0xF8};

inline constexpr Format jet4{.jet4 = true,
                             .page_size = 4096,
                             .commit_bytes = 0xE00,
                             .slot_count = 12,
                             .slots = 14,
                             .count_width = 2,
                             .rows = 0x10,
                             .autonumber = 0x14,
                             .max_columns = 0x29,
                             .variable = 0x2B,
                             .columns = 0x2D,
                             .logicals = 0x2F,
                             .reals = 0x33,
                             .owned = 0x37,
                             .free = 0x3B,
                             .blocks = 0x3F,
                             .real_count = 12,
                             .column = 25,
                             .number = 5,
                             .slot = 7,
                             .collation = 11,
                             .flags = 15,
                             .fixed_offset = 21,
                             .length = 23,
                             .real = 52,
                             .real_columns = 4,
                             .map = 34,
                             .root = 38,
                             .real_flags = 46,
                             .logical = 28,
                             .logical_body = 4,
                             .name_length = 2,
                             .previous = 12,
                             .next = 16,
                             .tail = 20,
                             .prefix = 0x18,
                             .mask = 0x1B,
                             .entries = 0x1E0};

/// Type byte of a page.
namespace page_type {
inline constexpr std::uint32_t data = 1, definition = 2, node = 3, leaf = 4, map = 5;
}

/// Type codes of columns.
namespace column_type {
inline constexpr std::uint32_t boolean = 0x01, byte = 0x02, integer = 0x03, long_integer = 0x04,
                               currency = 0x05, single_float = 0x06, double_float = 0x07,
                               date = 0x08, binary = 0x09, text = 0x0A, ole = 0x0B, memo = 0x0C,
                               internal = 0x0D, guid = 0x0F, decimal = 0x10, internal_fixed = 0x11,
                               complex = 0x12;
}

/// Flags of a column record.
namespace column_flag {
inline constexpr std::uint32_t fixed = 0x01, autonumber = 0x04;
}

/// Flags of a real index.
namespace index_flag {
inline constexpr std::uint32_t unique = 0x01, ignore_nulls = 0x02, required = 0x08;
}

} // namespace jet::check
