#pragma once

#include "platform/jet/check/table.h"

#include <set>

namespace jet::check {

/// A row of MSysObjects.
struct Object {
    std::uint32_t id = 0, parent = 0;
    std::u16string name;
    std::uint32_t type = 0, flags = 0;
    std::vector<std::byte> properties; ///< of a table
    static constexpr std::uint32_t table = 1, database = 2, container = 3, relation = 8;
    static constexpr std::uint32_t root = 0x0F000000, tables = 0x0F000001, databases = 0x0F000002,
                                   relations = 0x0F000003;
    static constexpr std::uint32_t system_flags = 0x80000002;
};

/// A row of MSysRelationships: one pair of columns.
struct Relation_Row {
    std::u16string relation, table, column, referenced_table, referenced_column;
    std::uint32_t flags = 0, count = 0, position = 0;
};

/// What the system tables say, and every table that they lead to.
struct Catalogue {
    std::vector<Object> objects;
    std::vector<Relation_Row> relation_rows;
    std::set<std::uint32_t> objects_with_rights; ///< ids that MSysACEs names
    bool has_rights = false;                     ///< MSysACEs was read
    std::vector<Table> tables;

    const Table* table(std::u16string_view name) const;
    const Table* table(std::uint32_t page) const;
};

/// Checks MSysObjects, then every table that it names.
/// @return nothing when not even MSysObjects can be read.
std::optional<Catalogue> read_catalogue(Inspection& inspection);

/// Checks containers, rights and relations between the rows of the system tables.
void check_catalogue(Inspection& inspection, const Catalogue& catalogue);

} // namespace jet::check
