#pragma once

#include "platform/jet/format/definition.h"
#include "platform/jet/format/schema.h"
#include "platform/jet/pages/page_space.h"

#include <span>

namespace jet {

/// The definition of a Jet 4 table without columns.
Definition new_definition(Page_Number page, bool system);

/// Adds a column with the next number. Memo and OLE columns still need their maps.
/// @param flags beside those for fixed length and autonumber.
Column_Record& append_column(Definition& definition, const Column& column,
                             std::uint8_t flags = column_flags::updatable);

/// Adds the record of a tree. @return its number.
std::uint32_t append_real(Definition& definition, std::vector<Index_Part> columns,
                          std::uint8_t flags, Row_Place map, Page_Number root);

/// Adds a logical index at its place by name. @return its number.
std::uint32_t insert_logical(Definition& definition, std::u16string name, std::uint32_t real,
                             Index_Kind kind);

/// The two ends of a relation refer to each other by the number of the logical index.
struct Relation_End {
    Side side;
    std::uint32_t partner;
    Page_Number partner_table;
    bool cascade_update;
    bool cascade_delete;
    bool null_on_delete;
};
void set_relation(Definition& definition, std::uint32_t number, const Relation_End& end);

/// The number that the next logical index gets.
std::uint32_t next_logical(const Definition& definition);

/// Flags of a tree.
std::uint8_t flags_of(const Index& index);

/// Writes the definition to its chain, which grows as needed. The first page stays where it is.
void write_definition(Pager& pager, Page_Space& space, const Definition& definition);

} // namespace jet
