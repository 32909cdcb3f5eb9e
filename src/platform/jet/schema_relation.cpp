#include "platform/jet/catalogue/definition_chain.h"
#include "platform/jet/format/text.h"
#include "platform/jet/lookup.h"
#include "platform/jet/rows/scan.h"
#include "platform/jet/schema_change.h"
#include "platform/jet/schema_rules.h"

#include <algorithm>

namespace jet {
namespace {

const Table_State& table_named(Engine& engine, std::u16string_view name) {
    const auto* object = engine.object(name, object_ids::tables);
    if (object == nullptr || !object->table())
        throw Error(Failure::not_found, to_utf8(name), "no such table");
    return engine.table(object->page());
}

std::vector<Index_Part> parts_named(const Table_State& table,
                                    const std::vector<std::u16string>& names) {
    std::vector<Index_Part> parts;
    for (const auto& name : names)
        for (const auto& column : table.definition->columns)
            if (same_name(column.name, name)) parts.push_back({column.number, true});
    if (parts.size() != names.size() || parts.empty())
        refuse(table.object.name, "the relation is over columns that are not there");
    return parts;
}

/// The tree of a unique index over exactly these columns; unlike a new one it may go downwards.
std::optional<std::uint32_t> unique_over(const Definition& definition,
                                         const std::vector<Index_Part>& parts) {
    for (std::size_t real = 0; real < definition.reals.size(); ++real)
        if (definition.reals[real].unique() && definition.reals[real].columns == parts)
            return static_cast<std::uint32_t>(real);
    return std::nullopt;
}

/// Any tree over these columns serves the referring side, whatever its flags.
std::optional<std::uint32_t> tree_over(const Definition& definition,
                                       const std::vector<Index_Part>& parts) {
    for (std::size_t real = 0; real < definition.reals.size(); ++real)
        if (definition.reals[real].columns == parts) return static_cast<std::uint32_t>(real);
    return std::nullopt;
}

/// Hidden indexes are called .rB, .rC ... by their number.
std::u16string hidden_name(const Definition& definition) {
    const auto taken = [&](const std::u16string& name) {
        return std::any_of(definition.logicals.begin(), definition.logicals.end(),
                           [&](const Logical_Index& other) { return same_name(other.name, name); });
    };
    auto letter = static_cast<char16_t>(u'A' + next_logical(definition) % 26);
    std::u16string name = std::u16string(u".r") + letter;
    for (; taken(name); name = std::u16string(u".r") + letter)
        letter = letter == u'Z' ? u'a' : static_cast<char16_t>(letter + 1);
    return name;
}

} // namespace

New_Relation::New_Relation(Engine& engine, const Relation& relation)
    : engine_(engine), relation_(relation) {
    check_name(relation.name);
    check_catalogue(engine);
    check_name_free(engine, relation.name, object_ids::relations);
    const auto& table = table_named(engine, relation.table);
    const auto& foreign = table_named(engine, relation.foreign_table);
    table_ = table.object.page();
    foreign_table_ = foreign.object.page();
    columns_ = parts_named(table, relation.columns);
    foreign_columns_ = parts_named(foreign, relation.foreign_columns);
    if (columns_.size() != foreign_columns_.size() || columns_.size() > most_index_columns)
        refuse(relation.name, "pairs one to ten columns of each table");
    if (!relation.enforced) return;
    check_indexes(table, foreign);
    check_rows(table, foreign);
}

void New_Relation::check_indexes(const Table_State& table, const Table_State& foreign) {
    for (std::size_t i = 0; i < columns_.size(); ++i)
        if (table.definition->by_number(columns_[i].column)->type !=
            foreign.definition->by_number(foreign_columns_[i].column)->type)
            refuse(relation_.name, "pairs columns of different types");
    if (!unique_over(*table.definition, columns_))
        refuse(relation_.name, "there is no unique index over the columns of the key");
    const std::size_t in_one = table_ == foreign_table_ ? 2 : 1;
    if (table.indexes.size() + in_one > most_indexes ||
        foreign.indexes.size() + in_one > most_indexes)
        refuse(relation_.name, "a table has 32 indexes already");
    for (const auto& other : foreign.indexes)
        if (same_name(other.name, relation_.name)) refuse(relation_.name, "the name is taken");
}

/// Every row that refers to something must find it.
void New_Relation::check_rows(const Table_State& table, const Table_State& foreign) {
    const auto real = *unique_over(*table.definition, columns_);
    const auto& shape = table.shapes[real];
    Table_Writer keys(engine_.pager(), engine_.hints(), table);
    const auto tree = keys.tree(real);
    const auto own = shape_of(*foreign.definition, foreign_columns_, index_flags::always);
    if (!can_compute(shape) || !can_compute(own))
        refuse(relation_.name, "the keys of its columns cannot be computed");
    for_each_row(engine_.pager(), *foreign.definition, [&](Row_Source& source) {
        const std::vector<Value> values = values_at(source, foreign_columns_);
        const bool refers = !std::all_of(values.begin(), values.end(), is_null);
        if (refers && !tree.contains(key_of(shape.columns, values)))
            refuse(relation_.name, "there are rows that refer to nothing");
    });
    if (!tree_over(*foreign.definition, foreign_columns_))
        entries_ = entries_of(engine_, foreign, foreign_columns_, own, relation_.name);
}

/// Both ends are in one definition when a table refers to itself.
void New_Relation::add_indexes() {
    auto& pager = engine_.pager();
    Page_Space space(pager);
    auto foreign = read_definition(pager, jet4_layout, foreign_table_);
    auto real = tree_over(foreign, foreign_columns_);
    if (!real)
        real = add_tree(pager, space, foreign, foreign_columns_, index_flags::always,
                        std::move(entries_));
    one_to_one_ = foreign.reals[*real].unique();
    const auto referring = insert_logical(foreign, relation_.name, *real, Index_Kind::relation);
    const bool itself = table_ == foreign_table_;
    auto other = itself ? Definition{} : read_definition(pager, jet4_layout, table_);
    auto& table = itself ? foreign : other;
    const auto referenced = insert_logical(table, hidden_name(table), *unique_over(table, columns_),
                                           Index_Kind::relation);
    const auto end = [&](Side side, std::uint32_t partner, Page_Number partner_table) {
        return Relation_End{side,
                            partner,
                            partner_table,
                            relation_.cascade_update,
                            relation_.cascade_delete,
                            relation_.null_on_delete};
    };
    set_relation(foreign, referring, end(Side::referring, referenced, table_));
    set_relation(table, referenced, end(Side::referenced, referring, foreign_table_));
    write_definition(pager, space, foreign);
    if (!itself) write_definition(pager, space, table);
}

void New_Relation::apply() {
    const auto object = engine_.table(table_).object;
    const auto foreign = engine_.table(foreign_table_).object;
    relation_.table = object.name;
    relation_.foreign_table = foreign.name;
    if (relation_.enforced) add_indexes();
    Catalogue_Writer catalogue(engine_);
    catalogue.add_relation(relation_, one_to_one_);
    catalogue.note_change(object, nullptr);
    if (foreign_table_ != table_) catalogue.note_change(foreign, nullptr);
    engine_.forget();
}

} // namespace jet
