#include "platform/jet/statement.h"

#include "platform/jet/default_value.h"
#include "platform/jet/lookup.h"
#include "platform/jet/scan.h"
#include "platform/jet/text.h"

#include <algorithm>
#include <limits>
#include <random>

namespace jet {
namespace {

[[noreturn]] void refuse(std::u16string_view subject, const std::string& reason) {
    throw Error(Failure::refused, to_utf8(subject), reason);
}

std::vector<Value> values_of(const Definition& definition, const Real_Index& index,
                             const std::vector<Value>& row) {
    std::vector<Value> values;
    for (const auto& part : index.columns)
        values.push_back(row[position_of(definition, part.column)]);
    return values;
}

bool any_null(const std::vector<Value>& values) {
    return std::any_of(values.begin(), values.end(), is_null);
}

bool all_null(const std::vector<Value>& values) {
    return std::all_of(values.begin(), values.end(), is_null);
}

bool is_relation(const Logical_Index& index, Side side) {
    return index.kind == Index_Kind::relation && index.side == side;
}

/// Indexes on one tree have one rule; the first of them gives it a name.
const std::u16string& name_of(const Definition& definition, std::size_t real) {
    static const std::u16string nameless;
    for (const auto& logical : definition.logicals)
        if (logical.real == real) return logical.name;
    return nameless;
}

/// An empty text becomes null in a column that does not allow it.
void null_if_forbidden(const Column& column, Value& value) {
    const auto* text = std::get_if<std::u16string>(&value);
    if (text != nullptr && text->empty() && !column.allow_zero_length) value = Null{};
}

Guid random_guid() {
    std::random_device source;
    Guid guid;
    for (auto& byte : guid.bytes) byte = static_cast<std::byte>(source());
    return guid;
}

/// The bytes of a value in a row, at most: compressed text takes fewer.
std::size_t most_bytes(const Column_Record& column, const Value& value) {
    if (is_null(value) || column.fixed() || column.boolean()) return 0;
    if (column.long_value()) return 76;
    if (const auto* text = std::get_if<std::u16string>(&value)) return 2 * text->size();
    if (const auto* bytes = std::get_if<Bytes>(&value)) return bytes->size();
    return 17;
}

} // namespace

const Table_State& Statement::writable_table(Page_Number id) {
    const auto& table = engine_.table(id);
    if (!table.computable)
        throw Error(Failure::read_only, to_utf8(table.object.name),
                    "has an index whose keys cannot be computed");
    return table;
}

Table_Writer Statement::writer(const Table_State& table) {
    return {engine_.pager(), engine_.hints(), table};
}

Statement::Planned* Statement::planned(Page_Number table, Row_Id row) {
    const auto found = places_.find({table, row});
    return found == places_.end() ? nullptr : &plan_[found->second];
}

std::vector<Value> Statement::read_indexed(const Table_State& table, Row_Id row) {
    const auto& definition = *table.definition;
    Row_Source source(engine_.pager(), definition);
    if (!source.find(row))
        throw Error(Failure::not_found, to_utf8(table.object.name), "no such row");
    std::vector<Value> values(definition.columns.size());
    for (const auto& real : definition.reals)
        for (const auto& part : real.columns) {
            const auto position = position_of(definition, part.column);
            values[position] = value_at(source, position);
        }
    return values;
}

/// The plan for a row that exists; the one that is there already or a new one.
Statement::Planned& Statement::plan(const Table_State& table, Row_Id row, Kind kind) {
    const auto id = table.object.page();
    auto* known = planned(id, row);
    if (known == nullptr) {
        auto before = read_indexed(table, row);
        places_[{id, row}] = plan_.size();
        const auto columns = before.size();
        plan_.push_back({kind, id, row, before, before, std::vector<bool>(columns), {}});
        known = &plan_.back();
    } else if (known->kind == Kind::erase || kind == Kind::update) {
        kind = known->kind;
    }
    known->kind = kind;
    to_follow_.push_back(places_[{id, row}]);
    return *known;
}

void Statement::set_cell(const Table_State& table, Planned& row, std::size_t column,
                         const Value& value) {
    const auto& record = table.definition->columns.at(column);
    auto fitting = fitted(record, value);
    if (empty_ == Empty_Text::null) null_if_forbidden(table.columns[column], fitting);
    if (const auto* number = std::get_if<std::int32_t>(&fitting); number && record.auto_number())
        row.auto_number = *number;
    row.values[column] = std::move(fitting);
    row.changed[column] = true;
}

void Statement::insert(Page_Number id, std::span<const Cell> cells) {
    const auto& table = writable_table(id);
    const auto columns = table.columns.size();
    auto& row = plan_.emplace_back();
    row.table = id;
    row.values.resize(columns);
    row.changed.resize(columns);
    for (const auto& cell : cells) set_cell(table, row, cell.column, cell.value);
    for (std::size_t i = 0; i < columns; ++i) {
        const auto& record = table.definition->columns[i];
        if (!row.changed[i]) {
            row.values[i] = default_value(record, table.columns[i].default_value);
            null_if_forbidden(table.columns[i], row.values[i]);
        }
        if (record.auto_guid() && is_null(row.values[i])) row.values[i] = random_guid();
    }
    row.before.resize(columns);
    number_row(table, row);
    finish_plan();
}

void Statement::number_row(const Table_State& table, Planned& row) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (!table.definition->columns[i].auto_number()) continue;
        if (is_null(row.values[i])) {
            const auto last = std::max(writer(table).last_auto_number(), highest_number(table, i));
            if (last == std::numeric_limits<std::int32_t>::max())
                refuse(table.columns[i].name, "all numbers are used up");
            row.values[i] = last + 1;
            row.counted = true;
        }
        row.auto_number = std::get<std::int32_t>(row.values[i]);
    }
}

/// The counter of a file that others have changed may lag behind its keys.
std::int32_t Statement::highest_number(const Table_State& table, std::size_t column) {
    const auto& definition = *table.definition;
    std::int32_t highest = 0;
    if (engine_.counter_holds(table.object.page())) return highest;
    const auto note = [&](Row_Source& source) {
        const auto value = value_at(source, column);
        if (const auto* number = std::get_if<std::int32_t>(&value))
            highest = std::max(highest, *number);
    };
    for (std::size_t real = 0; real < definition.reals.size(); ++real) {
        const auto& first = definition.reals[real].columns.front();
        if (!first.ascending || position_of(definition, first.column) != column) continue;
        const auto last = writer(table).tree(real).last();
        if (last.at_end()) return 0;
        Row_Source source(engine_.pager(), definition);
        if (source.find({last.row().page, last.row().row})) note(source);
        return highest;
    }
    for_each_row(engine_.pager(), definition, note);
    return highest;
}

void Statement::plan_update(const Table_State& table, Row_Id row, std::span<const Cell> cells) {
    auto& known = plan(table, row, Kind::update);
    for (const auto& cell : cells) set_cell(table, known, cell.column, cell.value);
}

void Statement::update(Page_Number id, Row_Id row, std::span<const Cell> cells) {
    plan_update(writable_table(id), row, cells);
    finish_plan();
}

void Statement::erase(Page_Number id, Row_Id row) {
    plan(writable_table(id), row, Kind::erase);
    finish_plan();
}

std::vector<std::pair<Page_Number, Row_Id>> Statement::followers(Page_Number id, Row_Id row) {
    const auto& logicals = writable_table(id).definition->logicals;
    const bool referenced = std::any_of(logicals.begin(), logicals.end(), [](const auto& index) {
        return is_relation(index, Side::referenced);
    });
    std::vector<std::pair<Page_Number, Row_Id>> found;
    if (!referenced) return found;
    erase(id, row);
    for (std::size_t i = 1; i < plan_.size(); ++i) found.emplace_back(plan_[i].table, plan_[i].row);
    return found;
}

void Statement::finish_plan() {
    while (!to_follow_.empty()) {
        const auto place = to_follow_.front();
        to_follow_.pop_front();
        follow_relations(plan_[place]);
    }
    for (const auto& forbidding : forbidding_) {
        const auto* row = planned(forbidding.table, forbidding.row);
        if (row == nullptr || row->kind != Kind::erase)
            refuse(forbidding.relation, "rows of another table refer to this one");
    }
    for (const auto& row : plan_)
        if (row.kind != Kind::erase) check_row(row);
}

void Statement::follow_relations(Planned& row) {
    const auto& table = writable_table(row.table);
    for (const auto& index : table.definition->logicals)
        if (is_relation(index, Side::referenced)) follow(table, row, index);
}

const Logical_Index& Statement::partner(const Logical_Index& index,
                                        const Table_State& other) const {
    for (const auto& candidate : other.definition->logicals)
        if (candidate.number == index.partner && candidate.kind == Index_Kind::relation)
            return candidate;
    throw damaged(other.object.page(), "a relation without its other side");
}

/// Finds the rows that refer to a row which goes or gets another key.
void Statement::follow(const Table_State& table, Planned& row, const Logical_Index& index) {
    const auto& real = table.definition->reals[index.real];
    const auto before = values_of(*table.definition, real, row.before);
    const auto after = values_of(*table.definition, real, row.values);
    const auto& columns = table.shapes[index.real].columns;
    if (any_null(before)) return;
    if (row.kind == Kind::update && key_of(columns, before) == key_of(columns, after)) return;
    const auto& child = writable_table(index.partner_table);
    const auto& other = partner(index, child);
    const auto& child_real = child.definition->reals[other.real];
    std::vector<Cell> new_reference;
    for (std::size_t i = 0; i < std::min(after.size(), child_real.columns.size()); ++i)
        new_reference.push_back(
            {position_of(*child.definition, child_real.columns[i].column), after[i]});
    const auto wanted = key_of(child.shapes[other.real].columns, before);
    for (const auto& at : writer(child).tree(other.real).rows(wanted))
        follow_to(child, {at.page, at.row}, row, other, new_reference);
}

void Statement::follow_to(const Table_State& child, Row_Id child_row, const Planned& row,
                          const Logical_Index& index, const std::vector<Cell>& new_reference) {
    if (row.kind == Kind::update) {
        if (index.cascade_update)
            plan_update(child, child_row, new_reference);
        else
            forbidding_.push_back({child.object.page(), child_row, index.name});
        return;
    }
    const auto* known = planned(child.object.page(), child_row);
    if (known != nullptr && known->kind == Kind::erase) return;
    if (index.cascade_delete) {
        plan(child, child_row, Kind::erase);
    } else if (index.null_on_delete) {
        auto nulls = new_reference;
        for (auto& cell : nulls) cell.value = Null{};
        plan_update(child, child_row, nulls);
    } else {
        forbidding_.push_back({child.object.page(), child_row, index.name});
    }
}

void Statement::check_row(const Planned& row) {
    const auto& table = writable_table(row.table);
    check_required(table, row);
    check_length(table, row);
    for (std::size_t real = 0; real < table.definition->reals.size(); ++real)
        check_index(table, row, real);
    for (const auto& index : table.definition->logicals)
        if (is_relation(index, Side::referring)) check_reference(table, row, index);
}

void Statement::check_required(const Table_State& table, const Planned& row) const {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const bool set = row.kind == Kind::insert || row.changed[i];
        if (set && table.columns[i].required && is_null(row.values[i]))
            refuse(table.columns[i].name, "must not be null");
    }
}

void Statement::check_length(const Table_State& table, const Planned& row) const {
    const auto& definition = *table.definition;
    std::size_t length =
        definition.fixed_end() + 2 * definition.variable_slots + definition.max_columns / 8U + 8;
    Raw_Cells kept(definition.columns.size());
    if (row.kind == Kind::update) {
        Row_Source source(engine_.pager(), definition);
        if (source.find(row.row)) kept = raw_cells(definition, source.row());
    }
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
        const auto& column = definition.columns[i];
        if (row.kind == Kind::insert || row.changed[i])
            length += most_bytes(column, row.values[i]);
        else if (kept[i] && !column.fixed())
            length += kept[i]->size();
    }
    if (length > longest_row) refuse(table.object.name, "the row is too long");
}

void Statement::check_index(const Table_State& table, const Planned& row, std::size_t real) {
    const auto& index = table.definition->reals[real];
    const auto& shape = table.shapes[real];
    const auto values = values_of(*table.definition, index, row.values);
    const auto key = key_of(shape.columns, values);
    if (row.kind == Kind::update &&
        key == key_of(shape.columns, values_of(*table.definition, index, row.before)))
        return;
    const auto& name = name_of(*table.definition, real);
    const auto rule = null_rule(shape, values);
    if (rule == Null_Rule::refused) refuse(name, "the index allows no null");
    if (key.size() > Index_Tree::longest_key) refuse(name, "the key is too long");
    if (!shape.unique || rule != Null_Rule::entry) return;
    if (!new_keys_[{row.table, real}].insert(key).second) refuse(name, "the key is there already");
    for (const auto& at : writer(table).tree(real).rows(key)) {
        const auto* other = planned(row.table, {at.page, at.row});
        const bool goes =
            other != nullptr &&
            (other->kind == Kind::erase ||
             key_of(shape.columns, values_of(*table.definition, index, other->values)) != key);
        if (!goes) refuse(name, "the key is there already");
    }
}

/// Whether a row that this statement stores will have the key.
bool Statement::planned_key(const Table_State& table, std::size_t real, const Bytes& key) {
    const auto& index = table.definition->reals[real];
    return std::any_of(plan_.begin(), plan_.end(), [&](const Planned& row) {
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
    if (all_null(values)) return;
    if (row.kind == Kind::update &&
        key_of(columns, values) == key_of(columns, values_of(*table.definition, real, row.before)))
        return;
    const auto& parent = engine_.table(index.partner_table);
    const auto& other = partner(index, parent);
    if (!can_compute(parent.shapes[other.real]))
        throw Error(Failure::read_only, to_utf8(parent.object.name),
                    "has an index whose keys cannot be computed");
    const auto wanted = key_of(parent.shapes[other.real].columns, values);
    if (!writer(parent).tree(other.real).contains(wanted) &&
        !planned_key(parent, other.real, wanted))
        refuse(index.name, "there is no row to which this one refers");
}

Inserted Statement::apply() {
    Inserted inserted;
    for (const auto& row : plan_) {
        auto table_writer = writer(engine_.table(row.table));
        if (row.kind == Kind::erase) {
            table_writer.erase(row.row);
        } else if (row.kind == Kind::update) {
            table_writer.update(row.row, row.values, row.changed);
        } else {
            inserted.id = table_writer.insert(row.values);
            inserted.auto_number = row.auto_number.value_or(0);
        }
        if (row.auto_number) table_writer.note_auto_number(*row.auto_number);
        if (row.counted) engine_.note_counter_holds(row.table);
    }
    return inserted;
}

} // namespace jet
