#include "platform/jet/catalogue_writer.h"

#include "platform/jet/lookup.h"
#include "platform/jet/rows/scan.h"

#include <algorithm>
#include <limits>

namespace jet {
namespace {

constexpr std::int32_t all_rights = 0xFFFFF;
/// Beside the one SID that stands for whoever creates an object, the others of a file differ from
/// it by fixed bits.
constexpr std::array creator_bits{std::byte{0x01}, std::byte{0x05}};

Bytes creator_of(const Bytes& owner) {
    auto creator = owner;
    for (std::size_t i = 0; i < creator_bits.size(); ++i) creator[i] ^= creator_bits[i];
    return creator;
}

struct Right {
    Bytes sid;
    std::int32_t rights;
};

std::size_t column(const Table_State& table, std::u16string_view name) {
    return position_of(*table.definition, column_named(*table.definition, name).number);
}

std::int32_t relation_flags(const Relation& relation, bool one_to_one) {
    unsigned flags = one_to_one ? 1U : 0U;
    if (!relation.enforced) flags |= 0x2U;
    if (relation.cascade_update) flags |= 0x100U;
    if (relation.cascade_delete) flags |= 0x1000U;
    if (relation.null_on_delete) flags |= 0x2000U;
    return static_cast<std::int32_t>(flags);
}

} // namespace

void Catalogue_Writer::insert(const Table_State& table,
                              std::initializer_list<std::pair<std::u16string_view, Value>> cells) {
    std::vector<Cell> row;
    for (const auto& [name, value] : cells) row.push_back({column(table, name), value});
    Statement statement(engine_);
    statement.insert(table.object.page(), row);
    statement.apply();
}

/// Whoever owns the database owns what is made in it.
Bytes Catalogue_Writer::owner() const {
    const auto& table = engine_.table(objects_page);
    const auto* database = engine_.object(u"MSysDb", object_ids::databases);
    Row_Source source(engine_.pager(), *table.definition);
    if (database != nullptr && source.find(database->row)) {
        const auto value = value_at(source, column(table, u"Owner"));
        if (const auto* sid = std::get_if<Bytes>(&value); sid != nullptr && !sid->empty())
            return *sid;
    }
    return {std::byte{0xA6}, std::byte{0x33}};
}

/// Things without a page count upwards from the lowest number.
std::int32_t Catalogue_Writer::new_id() const {
    std::int32_t next = std::numeric_limits<std::int32_t>::min();
    for (const auto& object : engine_.objects())
        if (object.id < 0) next = std::max(next, object.id + 1);
    return next;
}

void Catalogue_Writer::add_object(std::int32_t id, std::int32_t parent, std::u16string_view name,
                                  Object_Type type, const Bytes& properties) {
    const Date now{engine_.now()};
    insert(engine_.table(objects_page),
           {{u"Id", id},
            {u"ParentId", parent},
            {u"Name", std::u16string(name)},
            {u"Type", static_cast<std::int32_t>(type)},
            {u"DateCreate", now},
            {u"DateUpdate", now},
            {u"Owner", owner()},
            {u"Flags", 0},
            {u"LvProp", properties.empty() ? Value(Null{}) : Value(properties)}});
}

/// What the container lets its children inherit, the creator's entry turned into the owner's and
/// entries of one SID joined.
void Catalogue_Writer::add_rights(std::int32_t id, std::int32_t container) {
    const auto& table = engine_.system_table(u"MSysACEs");
    const auto sid = owner();
    std::vector<Right> rights;
    for_each_row(engine_.pager(), *table.definition, [&](Row_Source& source) {
        const auto of = [&](std::u16string_view name) {
            return value_at(source, column(table, name));
        };
        if (of(u"ObjectId") != Value(container) || of(u"FInheritable") != Value(true)) return;
        const auto stored = of(u"SID");
        const auto stored_rights = of(u"ACM");
        const auto* whose = std::get_if<Bytes>(&stored);
        const auto* what = std::get_if<std::int32_t>(&stored_rights);
        if (whose == nullptr || what == nullptr) return;
        const auto& heir = sid.size() == 2 && *whose == creator_of(sid) ? sid : *whose;
        const auto known = std::find_if(rights.begin(), rights.end(),
                                        [&](const Right& right) { return right.sid == heir; });
        if (known == rights.end())
            rights.push_back({heir, *what});
        else
            known->rights |= *what;
    });
    if (rights.empty() || sid.size() != 2) rights = {{sid, all_rights}};
    for (const auto& right : rights)
        insert(table, {{u"ObjectId", id},
                       {u"SID", right.sid},
                       {u"ACM", right.rights},
                       {u"FInheritable", false}});
}

void Catalogue_Writer::add_table(Page_Number page, std::u16string_view name,
                                 const Bytes& properties) {
    const auto id = static_cast<std::int32_t>(page);
    add_object(id, object_ids::tables, name, Object_Type::table, properties);
    add_rights(id, object_ids::tables);
}

void Catalogue_Writer::add_relation(const Relation& relation, bool one_to_one) {
    const auto& table = engine_.system_table(u"MSysRelationships");
    for (std::size_t i = 0; i < relation.columns.size(); ++i)
        insert(table, {{u"szRelationship", relation.name},
                       {u"grbit", relation_flags(relation, one_to_one)},
                       {u"ccolumn", static_cast<std::int32_t>(relation.columns.size())},
                       {u"icolumn", static_cast<std::int32_t>(i)},
                       {u"szObject", relation.foreign_table},
                       {u"szColumn", relation.foreign_columns[i]},
                       {u"szReferencedObject", relation.table},
                       {u"szReferencedColumn", relation.columns[i]}});
    const auto id = new_id();
    add_object(id, object_ids::relations, relation.name, Object_Type::relation, {});
    add_rights(id, object_ids::relations);
}

void Catalogue_Writer::note_change(const Object& object, const Properties* properties) {
    const auto& table = engine_.table(objects_page);
    std::vector<Cell> cells{{column(table, u"DateUpdate"), Date{engine_.now()}}};
    if (properties != nullptr) {
        const Bytes stored = properties->stored(); // other readers stumble over an empty block
        cells.push_back({column(table, u"LvProp"), stored.empty() ? Value(Null{}) : Value(stored)});
    }
    Statement statement(engine_);
    statement.update(objects_page, object.row, cells);
    statement.apply();
}

} // namespace jet
