#pragma once

#include "platform/jet/format/bytes.h"
#include "platform/jet/format/layout.h"
#include "platform/jet/format/page.h"
#include "platform/jet/format/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

/// Records of a definition keep their bytes as found: what we do not understand in them goes back
/// untouched when the definition is written anew. The other fields are decoded from them.
using Record = std::vector<std::byte>;

/// Bytes of each page of a definition before what belongs to it: kind, length, next page.
inline constexpr std::size_t definition_page_head = 8;

struct Column_Record {
    Record record;
    std::u16string name;
    std::size_t place = 0; ///< among the records, which need not stand in the order of the numbers
    Column_Type type = Column_Type::long_integer;
    std::uint16_t number =
        0; ///< bit in the null bitmap of a row; of deleted columns never used again
    std::uint16_t slot = 0;   ///< variable column: its place in the offset table of a row
    std::uint16_t offset = 0; ///< fixed column: from the end of the row's column count
    std::uint16_t length = 0; ///< in bytes
    std::uint32_t extra = 0;  ///< Text and Memo: collation; Decimal: precision and scale
    std::uint8_t flags = 0;
    std::uint8_t more_flags = 0;

    bool fixed() const { return (flags & column_flags::fixed) != 0; }
    bool auto_number() const {
        return type == Column_Type::long_integer && (flags & column_flags::auto_number) != 0;
    }
    bool auto_guid() const {
        return type == Column_Type::guid && (flags & column_flags::auto_guid) != 0;
    }
    bool compressed() const { return (more_flags & 1U) != 0; }
    bool long_value() const { return type == Column_Type::memo || type == Column_Type::ole; }
    bool boolean() const { return type == Column_Type::boolean; }
    /// Bytes in the fixed part of a row.
    std::size_t fixed_size() const;
};

struct Index_Part {
    std::uint16_t column = 0; ///< column number
    bool ascending = true;
    bool operator==(const Index_Part&) const = default;
};

/// A tree.
struct Real_Index {
    Record record;
    std::vector<Index_Part> columns;
    Row_Place map;
    Page_Number root = 0;
    std::uint8_t flags = 0;

    bool unique() const { return (flags & index_flags::unique) != 0; }
    bool ignores_nulls() const { return (flags & index_flags::ignores_nulls) != 0; }
    bool required() const { return (flags & index_flags::required) != 0; }
};

enum class Index_Kind : std::uint8_t { other = 0, primary = 1, relation = 2 };
enum class Side : std::uint8_t { none = 0, referenced = 1, referring = 2 };

/// A name and a purpose for a tree.
struct Logical_Index {
    Record record;
    std::u16string name;
    std::uint32_t number = 0; ///< by it the partner in the other table names this one
    std::uint32_t real = 0;
    Side side = Side::none;
    std::uint32_t partner = 0;
    Page_Number partner_table = 0;
    bool cascade_update = false;
    bool cascade_delete = false;
    bool null_on_delete = false;
    Index_Kind kind = Index_Kind::other;

    bool relation(Side wanted) const { return kind == Index_Kind::relation && side == wanted; }
};

/// Maps of the pages of one Memo or OLE column.
struct Long_Maps {
    std::uint16_t column = 0; ///< column number
    Row_Place owned;
    Row_Place free;
};

/// A table definition, taken apart.
struct Definition {
    const Layout* layout = &jet4_layout;
    std::vector<Page_Number> chain; ///< its pages; the first is the table's identity
    Record head;                    ///< up to the blocks
    Record entry_counts;
    std::vector<Column_Record> columns; ///< in the order of their numbers
    std::vector<Real_Index> reals;
    std::vector<Logical_Index> logicals; ///< in the order of the file
    std::vector<Long_Maps> long_maps;
    Record tail; ///< what follows the end marker; nothing in all files met
    Row_Place owned;
    Row_Place free;
    std::uint16_t max_columns = 0;    ///< highest column number ever given + 1
    std::uint16_t variable_slots = 0; ///< ever given
    /// Rows with fewer columns than this were written before the table had a variable column and
    /// have no offsets at all.
    std::uint16_t first_variable = 0;

    Page_Number page() const { return chain.front(); }
    const Column_Record* by_number(std::uint16_t number) const;
    const Logical_Index* primary_key() const;
    /// The end of the farthest fixed column.
    std::size_t fixed_end() const;
};

/// Takes the joined string apart. @param first for messages and as the only page of the chain.
Definition parse_definition(const Layout& layout, Page_Number first, const Record& joined);

/// Puts a Jet 4 definition together again, numbers of columns and indexes and the length put right.
Record join_definition(const Definition& definition);

} // namespace jet
