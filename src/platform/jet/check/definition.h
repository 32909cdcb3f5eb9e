#pragma once

#include "platform/jet/check/inspection.h"

#include <optional>

namespace jet::check {

/// Of a table, those of deleted ones counted as well.
constexpr std::uint32_t most_columns = 255;

struct Column {
    std::u16string name;
    std::uint32_t type = 0;
    std::uint32_t number = 0; ///< bit in the null bitmap; gaps are deleted columns
    std::uint32_t slot = 0;   ///< of a variable column
    std::uint32_t collation = 0;
    std::uint32_t flags = 0;
    std::uint32_t fixed_offset = 0;
    std::uint32_t length = 0;          ///< bytes
    bool required = false;             ///< property of the catalogue
    bool empty_text_forbidden = false; ///< property of the catalogue

    bool fixed() const { return (flags & column_flag::fixed) != 0; }
    bool is_boolean() const { return type == column_type::boolean; }
    bool is_text() const { return type == column_type::text || type == column_type::memo; }
    bool is_long_value() const { return type == column_type::ole || type == column_type::memo; }
    /// Bytes that the column takes in the fixed part of a row.
    std::uint32_t fixed_size() const { return is_boolean() ? 0 : length; }
};

struct Key_Column {
    std::uint32_t number = 0; ///< of the column
    bool ascending = true;
    bool operator==(const Key_Column&) const = default;
};

/// One tree.
struct Real_Index {
    std::vector<Key_Column> columns;
    std::uint32_t map = 0; ///< row pointer
    std::uint32_t root = 0;
    std::uint32_t flags = 0;
    std::string words; ///< "index 'PrimaryKey' of table 'Sets'"

    bool unique() const { return (flags & index_flag::unique) != 0; }
    bool ignores_nulls() const { return (flags & index_flag::ignore_nulls) != 0; }
    bool required() const { return (flags & index_flag::required) != 0; }
};

/// A name and a purpose; several may stand on one tree.
struct Logical_Index {
    std::u16string name;
    std::uint32_t number = 0;
    std::uint32_t real = 0;
    std::uint32_t side = 0; ///< of a relation: 1 referenced, 2 referencing
    std::uint32_t partner_number = 0;
    std::uint32_t partner_table = 0;
    std::uint32_t cascade_update = 0, cascade_delete = 0;
    std::uint32_t type = 0;
    static constexpr std::uint32_t primary_key = 1, relation = 2;
    static constexpr std::uint32_t referenced = 1, referencing = 2;
};

/// Maps of the pages of one Memo or OLE column.
struct Long_Value_Maps {
    std::uint32_t column = 0; ///< number
    std::uint32_t owned = 0, free = 0;
};

struct Definition {
    std::uint32_t page = 0; ///< the first of its pages, the table's identity
    std::u16string name;
    std::string words; ///< "Table 'Sets'"
    bool system = false;
    std::uint32_t rows = 0;
    std::uint32_t autonumber = 0;
    std::uint32_t max_columns = 0;
    std::uint32_t variable_slots = 0;
    std::uint32_t column_count = 0, logical_count = 0, real_count = 0; ///< as the header says
    std::uint32_t owned = 0, free = 0;                                 ///< row pointers
    std::vector<Column> columns;
    std::vector<Real_Index> reals;
    std::vector<Logical_Index> logicals;
    std::vector<Long_Value_Maps> long_values;

    const Column* column(std::uint32_t number) const;
    const Column* column(std::u16string_view column_name) const;
    const Logical_Index* logical(std::uint32_t number) const;
};

/// Two names are one when they differ only in case (as far as Latin letters, Greek and Cyrillic
/// go).
bool same_name(std::u16string_view a, std::u16string_view b);

/// Reads and claims the pages of the definition that begins on `page` and parses it; `name` is that
/// of the catalogue.
/// @return nothing, with a fault, when its blocks do not fit together.
std::optional<Definition> read_definition(Inspection& inspection, std::uint32_t page,
                                          const std::u16string& name, bool system);

/// Checks what the parts of a definition say against each other.
/// @return whether rows and trees can be read by it.
bool check_definition(Inspection& inspection, const Definition& definition);

} // namespace jet::check
