// What a planned row must hold to be stored.

#include "platform/jet/format/text.h"
#include "platform/jet/lookup.h"
#include "platform/jet/statement.h"

#include <algorithm>

namespace jet {
namespace {

bool all_null(const std::vector<Value>& values) {
    return std::all_of(values.begin(), values.end(), is_null);
}

/// Indexes on one tree have one rule; the first of them gives it a name.
const std::u16string& name_of(const Definition& definition, std::size_t real) {
    static const std::u16string nameless;
    for (const auto& logical : definition.logicals)
        if (logical.real == real) return logical.name;
    return nameless;
}

} // namespace

void Statement::refuse_for_others(std::u16string_view subject, const std::string& reason) {
    Error error(Failure::refused, to_utf8(subject), reason);
    error.by_others = true;
    throw error;
}

void Statement::check_row(Planned& row) {
    const auto& table = writable_table(row.table);
    check_values(table, row);
    for (std::size_t real = 0; real < table.definition->reals.size(); ++real)
        check_index(table, row, real);
    for (const auto& index : table.definition->logicals)
        if (index.relation(Side::referring)) check_reference(table, row, index);
}

void Statement::check_values(const Table_State& table, Planned& row) {
    const auto& definition = *table.definition;
    const bool restored = origin_ == Origin::restored;
    for (std::size_t i = 0; i < table.columns.size() && !restored; ++i)
        if (row.changed[i] && table.columns[i].required && is_null(row.values[i]))
            refuse(table.columns[i].name, "must not be null");
    auto longest = restored ? longest_on_page : longest_row;
    Raw_Cells kept(definition.columns.size());
    if (row.kind == Kind::update) {
        kept = row.stored.cells;
        longest = std::max(longest, row.stored.size);
    }
    if (!lay_out(definition, row, kept, longest, origin_))
        refuse(table.object.name, "the row is too long");
}

void Statement::check_index(const Table_State& table, const Planned& row, std::size_t real) {
    const auto& definition = *table.definition;
    const auto& index = definition.reals[real];
    const auto& shape = table.shapes[real];
    const auto values = values_of(definition, index, row.values);
    const auto key = key_of(shape.columns, values);
    if (row.kind == Kind::update &&
        key == key_of(shape.columns, values_of(definition, index, row.stored.values)))
        return;
    const auto& name = name_of(definition, real);
    const auto rule = null_rule(shape, values);
    if (rule == Null_Rule::refused && origin_ == Origin::typed)
        refuse(name, "the index allows no null");
    if (key.size() > Index_Tree::longest_key) refuse(name, "the key is too long");
    if (!shape.unique || rule != Null_Rule::entry) return;
    bool taken = !new_keys_[{row.table, real}].insert(key).second;
    for (const auto& at : writer(table).tree(real).rows(key))
        taken = taken || keeps_key(table, at, real, key);
    if (taken) refuse_for_others(name, "the key is there already");
}

/// Whether a row that is in the tree with this key will still be, as far as is planned by now.
bool Statement::keeps_key(const Table_State& table, Row_Place row, std::size_t real,
                          const Bytes& key) {
    const auto* known = planned(table.object.page(), row);
    if (known == nullptr) return true;
    const auto& index = table.definition->reals[real];
    return known->kind != Kind::erase &&
           key_of(table.shapes[real].columns, values_of(*table.definition, index, known->values)) ==
               key;
}

/// Whether any row will have the key when all is stored.
bool Statement::will_have_key(const Table_State& table, std::size_t real, const Bytes& key) {
    const auto& index = table.definition->reals[real];
    const auto in_tree = writer(table).tree(real).rows(key);
    return std::any_of(in_tree.begin(), in_tree.end(),
                       [&](const Row_Place& at) { return keeps_key(table, at, real, key); }) ||
           std::any_of(plan_.begin(), plan_.end(), [&](const Planned& row) {
               return row.table == table.object.page() && row.kind != Kind::erase &&
                      key_of(table.shapes[real].columns,
                             values_of(*table.definition, index, row.values)) == key;
           });
}

void Statement::check_reference(const Table_State& table, const Planned& row,
                                const Logical_Index& index) {
    const auto& real = table.definition->reals[index.real];
    const auto& columns = table.shapes[index.real].columns;
    const auto values = values_of(*table.definition, real, row.values);
    if (orphan_ || all_null(values)) return;
    if (row.kind == Kind::update &&
        key_of(columns, values) ==
            key_of(columns, values_of(*table.definition, real, row.stored.values)))
        return;
    const auto& parent = engine_.table(index.partner_table);
    const auto& other = partner(index, parent);
    if (!can_compute(parent.shapes[other.real]))
        throw Error(Failure::read_only, to_utf8(parent.object.name),
                    "has an index whose keys cannot be computed");
    const auto wanted = key_of(parent.shapes[other.real].columns, values);
    if (!will_have_key(parent, other.real, wanted))
        refuse_for_others(index.name, "there is no row to which this one refers");
}

} // namespace jet
