#include "platform/jet/lookup.h"

#include "platform/jet/index/index_tree.h"
#include "platform/jet/rows/cell.h"
#include "platform/jet/rows/scan.h"

#include <algorithm>
#include <numeric>

namespace jet {
namespace {

/// Orders rows by their values: null first, numbers by size, texts by their units.
bool before(const std::vector<Value>& one, const std::vector<Value>& other) {
    for (std::size_t i = 0; i < one.size(); ++i) {
        if (one[i] == other[i]) continue;
        if (one[i].index() != other[i].index()) return one[i].index() < other[i].index();
        if (const auto* number = std::get_if<std::int32_t>(&one[i]))
            return *number < std::get<std::int32_t>(other[i]);
        if (const auto* number = std::get_if<double>(&one[i]))
            return *number < std::get<double>(other[i]);
        if (const auto* text = std::get_if<std::u16string>(&one[i]))
            return *text < std::get<std::u16string>(other[i]);
    }
    return false;
}

/// For trees that cannot be walked: reads all keys and sorts them.
std::vector<Row_Place> rows_sorted(Engine& engine, const Definition& definition,
                                   const Real_Index& index) {
    std::vector<std::pair<std::vector<Value>, Row_Place>> keyed;
    for_each_row(engine.pager(), definition, [&](Row_Source& source) {
        keyed.emplace_back(values_at(source, index.columns), source.id());
    });
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& a, const auto& b) { return before(a.first, b.first); });
    std::vector<Row_Place> rows;
    for (const auto& entry : keyed) rows.push_back(entry.second);
    return rows;
}

Index_Tree tree_of(Engine& engine, const Table_State& table, std::size_t real) {
    const auto& index = table.definition->reals[real];
    return {engine.pager(), table.object.page(), index.root, index.map};
}

} // namespace

std::size_t position_of(const Definition& definition, std::uint16_t column_number) {
    const auto* column = definition.by_number(column_number);
    return static_cast<std::size_t>(column - definition.columns.data());
}

std::vector<Value> values_of(const Definition& definition, const Real_Index& index,
                             const std::vector<Value>& row) {
    std::vector<Value> values;
    for (const auto& part : index.columns)
        values.push_back(row[position_of(definition, part.column)]);
    return values;
}

std::vector<Value> values_at(const Row_Source& source, std::span<const Index_Part> parts) {
    std::vector<Value> values;
    for (const auto& part : parts)
        values.push_back(value_at(source, position_of(source.definition(), part.column)));
    return values;
}

Value value_at(const Row_Source& source, std::size_t column) {
    const auto& record = source.definition().columns.at(column);
    if (record.boolean()) return source.row().has(record);
    if (!source.row().has(record)) return Null{};
    return decode_cell(source.pager(), *source.definition().layout, record,
                       source.row().cell(record));
}

std::optional<std::vector<Row_Place>> rows_in_key_order(Engine& engine, const Table_State& table) {
    const auto& definition = *table.definition;
    const auto* primary = definition.primary_key();
    if (primary == nullptr) return std::nullopt;
    try {
        std::vector<Row_Place> rows;
        for (auto at = tree_of(engine, table, primary->real).first(); !at.at_end(); at.next())
            rows.push_back(at.row());
        return rows;
    } catch (const Error& error) {
        if (error.kind != Failure::damaged) throw;
        engine.note_damage(error);
        return rows_sorted(engine, definition, definition.reals[primary->real]);
    }
}

std::optional<Access_Path> access_path(const Table_State& table,
                                       std::span<const std::size_t> columns) {
    const auto& definition = *table.definition;
    std::optional<Access_Path> best;
    for (std::size_t real = 0; real < definition.reals.size(); ++real) {
        if (definition.layout->jet3 || !can_compute(table.shapes[real])) continue;
        Access_Path path{real, {}};
        for (const auto& part : definition.reals[real].columns) {
            const auto position = position_of(definition, part.column);
            if (std::find(columns.begin(), columns.end(), position) == columns.end()) break;
            path.columns.push_back(position);
        }
        if (path.columns.empty()) continue;
        if (!best || path.columns.size() > best->columns.size()) best = std::move(path);
    }
    return best;
}

std::vector<Row_Place> rows_with_key(Engine& engine, const Table_State& table, std::size_t real,
                                     std::span<const Value> values) {
    const auto wanted = key_of(table.shapes[real].columns, values);
    std::vector<Row_Place> rows;
    for (auto at = tree_of(engine, table, real).lower_bound(wanted); !at.at_end(); at.next()) {
        const auto key = at.key();
        if (key.size() < wanted.size() || !std::equal(wanted.begin(), wanted.end(), key.begin()))
            break;
        rows.push_back(at.row());
    }
    return rows;
}

} // namespace jet
