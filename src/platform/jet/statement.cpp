#include "platform/jet/statement.h"

#include "platform/jet/default_value.h"
#include "platform/jet/format/text.h"
#include "platform/jet/lookup.h"
#include "platform/jet/rows/scan.h"

#include <algorithm>
#include <limits>
#include <random>

namespace jet {
namespace {

constexpr auto greatest_number = std::numeric_limits<std::int32_t>::max();

bool any_null(const std::vector<Value>& values) {
    return std::any_of(values.begin(), values.end(), is_null);
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

Statement::Planned* Statement::planned(Page_Number table, Row_Place row) {
    const auto found = places_.find({table, row});
    return found == places_.end() ? nullptr : &plan_[found->second];
}

/// The plan for a row that exists; the one that is there already or a new one.
Statement::Planned& Statement::plan(const Table_State& table, Row_Place row, Kind kind) {
    const auto id = table.object.page();
    auto* known = planned(id, row);
    if (known == nullptr) {
        auto stored = writer(table).stored(row, engine_.watcher != nullptr);
        if (!stored) throw Error(Failure::not_found, to_utf8(table.object.name), "no such row");
        places_[{id, row}] = plan_.size();
        known = &plan_.emplace_back();
        known->table = id;
        known->values = stored->values;
        known->changed.resize(stored->values.size());
        known->stored = *std::move(stored);
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
    auto fitting = fitted(record, value, origin_);
    if (origin_ == Origin::typed) null_if_forbidden(table.columns[column], fitting);
    if (const auto* number = std::get_if<std::int32_t>(&fitting); number && record.auto_number())
        row.auto_number = *number;
    row.values[column] = std::move(fitting);
    row.changed[column] = true;
}

Statement::Planned& Statement::plan_insert(const Table_State& table, std::span<const Cell> cells) {
    const auto columns = table.columns.size();
    auto& row = plan_.emplace_back();
    row.table = table.object.page();
    row.stored.values.resize(columns);
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
    row.changed.assign(columns, true);
    return row;
}

void Statement::insert(Page_Number id, std::span<const Cell> cells) {
    const auto& table = writable_table(id);
    number_row(table, plan_insert(table, cells));
    finish_plan();
}

void Statement::check(Page_Number id, std::span<const Cell> cells) {
    const auto& table = writable_table(id);
    auto& row = plan_insert(table, cells);
    for (std::size_t i = 0; i < row.values.size(); ++i)
        if (table.definition->columns[i].auto_number() && is_null(row.values[i]))
            row.values[i] = 0; // any number has as many bytes
    check_values(table, row);
}

void Statement::check(Page_Number id, Row_Place row, std::span<const Cell> cells) {
    const auto& table = writable_table(id);
    plan_update(table, row, cells);
    check_values(table, plan_.front());
}

void Statement::number_row(const Table_State& table, Planned& row) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (!table.definition->columns[i].auto_number()) continue;
        if (is_null(row.values[i])) {
            const auto numbers = free_numbers(table, i);
            row.values[i] = numbers.last + 1;
            row.free_numbers = numbers.end;
        }
        row.auto_number = std::get<std::int32_t>(row.values[i]);
    }
}

Statement::Numbers Statement::free_numbers(const Table_State& table, std::size_t column) {
    const auto last = writer(table).last_auto_number();
    const auto end = engine_.free_numbers(table.object.page());
    if (end && last < *end) return {last, *end};
    const auto highest = std::max(last, highest_number(table, column));
    if (highest < greatest_number - 1) return {highest, greatest_number - 1};
    return gap_in_numbers(table, column, last);
}

/// Where a row has the greatest number the next one goes behind the highest that has none behind it:
/// a single row must not close its table for good.
Statement::Numbers Statement::gap_in_numbers(const Table_State& table, std::size_t column,
                                             std::int32_t last) {
    std::vector<std::int32_t> numbers{0};
    for_each_row(engine_.pager(), *table.definition, [&](Row_Source& source) {
        const auto value = value_at(source, column);
        if (const auto* number = std::get_if<std::int32_t>(&value)) numbers.push_back(*number);
    });
    std::sort(numbers.begin(), numbers.end());
    auto end = greatest_number;
    while (numbers.back() > 0 && numbers.back() >= end) {
        if (numbers.back() == end) --end;
        numbers.pop_back();
    }
    const auto highest = std::max(numbers.back(), 0);
    if (highest >= end) refuse(table.columns[column].name, "all numbers are used up");
    return {last > highest && last < end ? last : highest, end};
}

/// The counter of a file that others have changed may lag behind its keys.
std::int32_t Statement::highest_number(const Table_State& table, std::size_t column) {
    const auto& definition = *table.definition;
    std::int32_t highest = 0;
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
        if (source.find(last.row())) note(source);
        return highest;
    }
    for_each_row(engine_.pager(), definition, note);
    return highest;
}

void Statement::plan_update(const Table_State& table, Row_Place row, std::span<const Cell> cells) {
    auto& known = plan(table, row, Kind::update);
    for (const auto& cell : cells) set_cell(table, known, cell.column, cell.value);
}

void Statement::update(Page_Number id, Row_Place row, std::span<const Cell> cells) {
    plan_update(writable_table(id), row, cells);
    finish_plan();
}

void Statement::erase(Page_Number id, Row_Place row) {
    plan(writable_table(id), row, Kind::erase);
    finish_plan();
}

void Statement::finish_plan() {
    while (!to_follow_.empty()) {
        const auto place = to_follow_.front();
        to_follow_.pop_front();
        follow_relations(plan_[place]);
    }
    for (const auto& forbidding : forbidding_) {
        if (keeps_key(engine_.table(forbidding.table), forbidding.row, forbidding.real,
                      forbidding.reference))
            refuse_for_others(forbidding.relation, "rows of another table refer to this one");
    }
    for (auto& row : plan_)
        if (row.kind != Kind::erase) check_row(row);
}

void Statement::follow_relations(Planned& row) {
    const auto& table = writable_table(row.table);
    for (const auto& index : table.definition->logicals)
        if (index.relation(Side::referenced)) follow(table, row, index);
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
    const auto before = values_of(*table.definition, real, row.stored.values);
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
        if (keeps_key(child, at, other.real, wanted)) // not followed before
            follow_to(child, at, row, other, new_reference, wanted);
}

void Statement::follow_to(const Table_State& child, Row_Place child_row, const Planned& row,
                          const Logical_Index& index, const std::vector<Cell>& new_reference,
                          const Bytes& reference) {
    if (row.kind == Kind::update && index.cascade_update) {
        plan_update(child, child_row, new_reference);
    } else if (row.kind == Kind::erase && index.cascade_delete) {
        plan(child, child_row, Kind::erase);
    } else if (row.kind == Kind::erase && index.null_on_delete) {
        auto nulls = new_reference;
        for (auto& cell : nulls) cell.value = Null{};
        plan_update(child, child_row, nulls);
    } else {
        forbidding_.push_back({child.object.page(), child_row, index.real, reference, index.name});
    }
}

Inserted Statement::apply() {
    Inserted inserted;
    for (auto& row : plan_) {
        auto table_writer = writer(engine_.table(row.table));
        if (row.kind == Kind::erase) {
            table_writer.erase(row.stored);
        } else if (row.kind == Kind::update) {
            table_writer.update(row.stored, row);
        } else {
            inserted.id = row.stored.id = table_writer.insert(row);
            inserted.auto_number = row.auto_number.value_or(0);
        }
        if (!row.auto_number) continue;
        const auto number = *row.auto_number; // the greatest says nothing about the next one
        if (row.free_numbers ||
            (number > table_writer.last_auto_number() && number < greatest_number))
            table_writer.set_auto_number(number);
        if (row.free_numbers) engine_.note_free_numbers(row.table, *row.free_numbers);
    }
    return inserted;
}

/// As they will be read: a text of fixed length comes back with its blanks.
std::vector<Value> Statement::values_after(const Planned& row) const {
    const auto& definition = *engine_.table(row.table).definition;
    auto values = row.values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto& column = definition.columns[i];
        if (row.changed[i] && column.fixed() && column.type == Column_Type::text && row.cells[i])
            values[i] = decode_cell(engine_.pager(), *definition.layout, column,
                                    View(*row.cells[i], row.table));
    }
    return values;
}

void Statement::tell() const {
    if (engine_.watcher == nullptr) return;
    static const std::vector<Value> nothing;
    for (auto row = plan_.rbegin(); row != plan_.rend(); ++row)
        engine_.watcher->row_changed(row->table, row->stored.id,
                                     row->kind == Kind::insert ? nothing : row->stored.values,
                                     row->kind == Kind::erase ? nothing : values_after(*row));
}

} // namespace jet
