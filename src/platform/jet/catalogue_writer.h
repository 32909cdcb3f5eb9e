#pragma once

#include "platform/jet/engine.h"
#include "platform/jet/statement.h"

#include <string_view>

namespace jet {

/// Rows that the catalogue needs for new tables and relations.
class Catalogue_Writer {
public:
    explicit Catalogue_Writer(Engine& engine) : engine_(engine) {}

    /// The row in MSysObjects and the rights in MSysACEs.
    void add_table(Page_Number page, std::u16string_view name, const Bytes& properties);
    /// The same, and the rows of MSysRelationships.
    void add_relation(const Relation& relation, bool one_to_one);
    /// Notes that a table has changed; its properties too, if given.
    void note_change(const Object& table, const Properties* properties);

private:
    void add_object(std::int32_t id, std::int32_t parent, std::u16string_view name,
                    Object_Type type, const Bytes& properties);
    void add_rights(std::int32_t id, std::int32_t container);
    void insert(const Table_State& table,
                std::initializer_list<std::pair<std::u16string_view, Value>> cells);
    std::int32_t new_id() const;
    Bytes owner() const;

    Engine& engine_;
};

} // namespace jet
