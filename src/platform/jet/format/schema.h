#pragma once

#include "platform/jet/format/value.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace jet {

/// A column, as found in a table and as given when one is made.
struct Column {
    std::u16string name; ///< 1..64 characters
    Column_Type type = Column_Type::long_integer;
    /// Text: largest number of characters (1..255). Binary: of bytes (1..510). Others: 0.
    std::size_t length = 0;
    bool auto_number =
        false;             ///< Long (or GUID, in files of others); filled by the database on insert
    bool required = false; ///< null is refused
    /// Text and Memo: an empty text may be stored; where false it becomes null.
    bool allow_zero_length = false;
    /// The expression as stored, e.g. `0` or `"new"`; empty: none.
    std::u16string default_value;
    std::u16string description;
    bool compressed = false;    ///< text is stored with one byte a character where that is possible
    bool fixed = false;         ///< the value has a fixed place in the row; of no consequence above
    std::uint8_t precision = 0; ///< Decimal only
    std::uint8_t scale = 0;     ///< Decimal only
    bool operator==(const Column&) const = default;
};

struct Index_Column {
    std::u16string name;
    bool ascending = true;
    bool operator==(const Index_Column&) const = default;
};

/// A logical index: a name and a purpose. Several may stand on one tree.
struct Index {
    std::u16string name;
    std::vector<Index_Column> columns; ///< 1..10
    bool primary = false;              ///< unique and required go with it
    bool unique = false;
    bool required = false;     ///< a null in any of its columns is refused
    bool ignore_nulls = false; ///< rows with nothing but nulls in its columns are left out
    bool relation = false;     ///< made by an enforced relation (either side)
    bool operator==(const Index&) const = default;

    /// One that programs do not show: the primary side of a relation.
    bool hidden() const { return relation && !name.empty() && name.front() == u'.'; }
};

/// A relation between a key and the columns of another table that refer to it.
struct Relation {
    std::u16string name;
    std::u16string table; ///< the one with the key
    std::vector<std::u16string> columns;
    std::u16string foreign_table; ///< the one that refers
    std::vector<std::u16string> foreign_columns;
    bool enforced = true;
    bool cascade_update = false;
    bool cascade_delete = false;
    bool null_on_delete = false;
    bool operator==(const Relation&) const = default;
};

} // namespace jet
