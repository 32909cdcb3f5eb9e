#pragma once

#include "platform/files/disk.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// The judge of Jet database files. It shares no code with the engine that writes them, walks every
/// page afresh and computes every index key anew, so that a mistake of the engine cannot hide here.
namespace jet::check {

/// What is wrong. Names of rows, tables and pages are in the sentence of the finding.
enum class What {
    // the file
    file_length,    ///< no whole number of pages, or fewer than three
    not_jet,        ///< another kind of file
    version,        ///< another generation of the format
    enciphered,     ///< pages are enciphered
    password,       ///< a password is set
    commit_bytes,   ///< a write was perhaps interrupted
    header_pointer, ///< page 0 names other places for global map or system tables
    // usage maps and page ownership
    map_pointer,        ///< leads to no live map row
    map_kind,           ///< neither inline nor references
    map_shared,         ///< two maps are kept in one row
    map_reference,      ///< a reference leads out of the file
    map_beyond_file,    ///< lists a page that does not exist
    free_map_not_owned, ///< free-space map lists pages that the owned map lacks
    page_owned_twice,
    page_free_but_used,
    page_lost,          ///< neither owned nor free
    definition_unnamed, ///< a lost page that begins a table definition
    page_kind,          ///< type byte does not fit the use
    page_table,         ///< names another table
    // data pages and rows
    slot_table,  ///< slot table does not fit the page
    slot_offset, ///< row offset outside the page or rising
    slot_flags,
    free_field, ///< free bytes of a data or index page are wrong
    row_short,
    row_columns, ///< more columns than the table ever had
    row_slots,   ///< more variable slots than the table ever had
    row_offsets,
    row_fixed_part,
    row_bitmap, ///< null bits beyond the columns
    moved_row_target,
    moved_row_shared,
    moved_row_loop,
    moved_row_unreached,
    // values
    value_length,
    text_form, ///< half a character
    text_long, ///< longer than the column
    decimal_sign,
    null_in_required_column,
    empty_text_forbidden,
    long_header,
    long_piece,
    long_short,
    long_loop,
    long_shared,
    long_unused,
    long_stamp,
    // table definitions
    definition_page,
    definition_loop,
    definition_length,
    definition_counts, ///< more columns or indexes than a table can have
    definition_end,
    definition_constant,
    definition_free,
    column_count,
    column_number,
    column_slot,
    column_overlap,
    column_type,
    column_length,
    column_name,
    index_columns,
    index_real,
    index_number,
    index_name,
    index_unused,
    index_keys, ///< more than one primary key
    // index trees
    index_page,
    index_depth,
    index_loop,
    index_links,
    index_mask,
    index_prefix,
    index_entry_short,
    index_order,
    index_node_copy,
    index_tail,
    index_page_empty,
    index_map,
    index_entry_missing,
    index_entry_extra,
    index_key,
    index_duplicate,
    index_null,
    // counters
    row_count,
    autonumber,
    // catalogue, properties, relations
    catalogue_columns,
    catalogue_table,
    catalogue_container,
    catalogue_rights,
    property_block,
    property_name,
    property_column,
    relation_rows,
    relation_object,
    relation_partner,
    relation_side,
    relation_cascade,
    relation_index,
    relation_types,
    relation_orphan
};

struct Finding {
    enum class Grade {
        fault,   ///< the structure is broken: not safe to write
        content, ///< rows break a rule of their table or of an enforced relation; safe to write
        warning  ///< waste or untidiness
    };
    Grade grade;
    std::uint32_t page; ///< where it was seen; 0 also for what concerns the file as a whole
    What what;
    std::string
        sentence; ///< plain English; names page, table, row and index as far as they are known
    bool operator==(const Finding&) const = default;
};

struct Limits {
    /// So many findings of each grade are kept; the others are only counted.
    std::size_t findings = 100;
};

struct Report {
    /// False: no Jet file, another generation, enciphered, or its catalogue cannot be read at all.
    bool readable = true;
    std::vector<Finding> findings; ///< in the order of the walk
    std::size_t left_out = 0;      ///< findings beyond the limit
    /// @return whether the structure is sound: warnings and faults of content do not count.
    bool sound() const;
};

/// Reads the whole file and reports everything that is wrong with it. Never trusts a byte: ends on
/// any input, after work in proportion to the file's size and with memory far below it.
/// Changes nothing and takes no lock. @throws files::Error when the medium fails.
Report check(files::File& file, const Limits& limits = {});

/// The same over a file in memory.
Report check(std::span<const std::byte> file, const Limits& limits = {});

} // namespace jet::check
