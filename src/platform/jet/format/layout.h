#pragma once

#include <cstddef>
#include <cstdint>

namespace jet {

/// Code of the sort order that new files have: General, as of Access 2000 to 2007.
inline constexpr std::uint32_t general_collation = 0x0409;

/// First word of a page: the kind in the low byte, the high byte is 1 in all of them.
namespace page_kinds {
inline constexpr std::uint16_t data = 0x0101;
inline constexpr std::uint16_t definition = 0x0102;
inline constexpr std::uint16_t index_leaf = 0x0104;
} // namespace page_kinds

/// Offsets of what data, definition and index pages have in common.
inline constexpr std::size_t page_free = 2;  ///< u16, unused bytes
inline constexpr std::size_t page_owner = 4; ///< u32, page of the table's definition
/// Bytes for entries on a page of an index, behind header and mask.
inline constexpr std::size_t index_entry_room = 3616;

/// Of a column. Those without a name in the format are known by what sets them.
namespace column_flags {
inline constexpr std::uint8_t fixed = 0x01; ///< the value lies in the fixed part of a row
inline constexpr std::uint8_t updatable = 0x02;
inline constexpr std::uint8_t auto_number = 0x04;
inline constexpr std::uint8_t system = 0x10; ///< every column of the four system tables
inline constexpr std::uint8_t sid = 0x20;    ///< their two columns that name a user
inline constexpr std::uint8_t auto_guid = 0x40;
} // namespace column_flags

/// Of an index.
namespace index_flags {
inline constexpr std::uint8_t unique = 0x01;
inline constexpr std::uint8_t ignores_nulls = 0x02;
inline constexpr std::uint8_t required = 0x08;
inline constexpr std::uint8_t always = 0x80; ///< in every index since Access 2000
} // namespace index_flags

/// Where things stand in the two generations of the format. Offsets of fields, in bytes.
struct Layout {
    bool jet3;
    std::size_t page_size;
    std::size_t header_hidden;     ///< bytes of page 0 behind the fixed mask
    std::size_t slot_count, slots; ///< data page
    std::size_t count_size;        ///< of the column count, offsets and slot count in a row
    // definition
    std::size_t row_count, auto_number, type, max_columns, variable_slots, columns;
    std::size_t logical_indexes, real_indexes, owned_map, free_map, blocks;
    std::size_t entry_count_size;
    std::size_t column_record, column_number, column_slot, column_extra, column_flags;
    std::size_t column_offset, column_length;
    std::size_t name_length_size;
    std::size_t real_record, real_columns, real_map, real_root, real_flags;
    std::size_t logical_record, logical_number;
};

inline constexpr Layout jet4_layout{.jet3 = false,
                                    .page_size = 4096,
                                    .header_hidden = 128,
                                    .slot_count = 12,
                                    .slots = 14,
                                    .count_size = 2,
                                    .row_count = 0x10,
                                    .auto_number = 0x14,
                                    .type = 0x28,
                                    .max_columns = 0x29,
                                    .variable_slots = 0x2B,
                                    .columns = 0x2D,
                                    .logical_indexes = 0x2F,
                                    .real_indexes = 0x33,
                                    .owned_map = 0x37,
                                    .free_map = 0x3B,
                                    .blocks = 0x3F,
                                    .entry_count_size = 12,
                                    .column_record = 25,
                                    .column_number = 5,
                                    .column_slot = 7,
                                    .column_extra = 11,
                                    .column_flags = 15,
                                    .column_offset = 21,
                                    .column_length = 23,
                                    .name_length_size = 2,
                                    .real_record = 52,
                                    .real_columns = 4,
                                    .real_map = 34,
                                    .real_root = 38,
                                    .real_flags = 46,
                                    .logical_record = 28,
                                    .logical_number = 4};

inline constexpr Layout jet3_layout{.jet3 = true,
                                    .page_size = 2048,
                                    .header_hidden = 126,
                                    .slot_count = 8,
                                    .slots = 10,
                                    .count_size = 1,
                                    .row_count = 0x0C,
                                    .auto_number = 0x10,
                                    .type = 0x14,
                                    .max_columns = 0x15,
                                    .variable_slots = 0x17,
                                    .columns = 0x19,
                                    .logical_indexes = 0x1B,
                                    .real_indexes = 0x1F,
                                    .owned_map = 0x23,
                                    .free_map = 0x27,
                                    .blocks = 0x2B,
                                    .entry_count_size = 8,
                                    .column_record = 18,
                                    .column_number = 1,
                                    .column_slot = 3,
                                    .column_extra = 9,
                                    .column_flags = 13,
                                    .column_offset = 14,
                                    .column_length = 16,
                                    .name_length_size = 1,
                                    .real_record = 39,
                                    .real_columns = 0,
                                    .real_map = 30,
                                    .real_root = 34,
                                    .real_flags = 38,
                                    .logical_record = 20,
                                    .logical_number = 0};

} // namespace jet
