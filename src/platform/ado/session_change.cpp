// Changing rows, each told to the watcher, with the tables held in memory kept right.

#include "platform/ado/error.h"
#include "platform/ado/session.h"
#include "platform/failure/sure.h"

#include <algorithm>
#include <utility>

namespace ado {

namespace {

struct As_Type { // libraries of others hold our numbers in columns of other types
    jet::Column_Type type;

    Value operator()(std::int32_t number) const {
        switch (type) {
        case jet::Column_Type::boolean:
            return number != 0;
        case jet::Column_Type::currency:
            return jet::Currency{number * std::int64_t{10000}};
        case jet::Column_Type::single_float:
        case jet::Column_Type::double_float:
            return static_cast<double>(number);
        case jet::Column_Type::text:
        case jet::Column_Type::memo:
            return QString::number(number).toStdU16String();
        default:
            return number;
        }
    }
    template <class Other>
    Value operator()(const Other& other) const {
        return other;
    }
};

std::vector<jet::Cell> cells_of(const jet::Table& table, const Row& row) {
    std::vector<jet::Cell> cells;
    for (const auto& [name, value] : row) {
        const auto column = table.column(name.toStdU16String());
        if (!column)
            throw Error(Failure::not_found, name.toStdString(), "no such column in the file");
        cells.push_back({*column, std::visit(As_Type{table.columns()[*column].type}, value)});
    }
    return cells;
}

Row row_of(const jet::Table& table, const std::vector<Value>& values) {
    Row row;
    for (std::size_t i = 0; i < values.size(); ++i)
        row.emplace_back(QString::fromStdU16String(table.columns()[i].name), values[i]);
    return row;
}

} // namespace

void Session::check(const QString& table, const Row& cells) {
    const jet::Table stored = stored_table(table);
    stored.check(cells_of(stored, cells));
}

void Session::check(const QString& table, const Row_Block& block, std::uint32_t row,
                    const Row& cells) {
    const jet::Table stored = stored_table(table);
    stored.check(block.id(row), cells_of(stored, cells));
}

void Session::Held_Rows::list(std::uint32_t row) {
    for (auto& [column, lookup] : lookups)
        if (const auto number = block->number(row, column)) lookup[*number].push_back(row);
}

void Session::Held_Rows::unlist(std::uint32_t row) {
    for (auto& [column, lookup] : lookups)
        if (const auto number = block->number(row, column)) std::erase(lookup[*number], row);
}

void Session::Held_Rows::remove(std::uint32_t row) {
    unlist(row);
    gone.insert(row);
}

void Session::let_go(const QString& table) {
    held_.erase(table.toLower());
    asked_.erase(table.toLower());
}

void Session::forget_held() {
    held_.clear();
    asked_.clear();
}

Session::Held_Rows* Session::held_with(const QString& table, const Row_Block& block) {
    const auto found = held_.find(table.toLower());
    if (found == held_.end()) return nullptr;
    if (found->second.block.get() == &block) return &found->second;
    let_go(table); // rows of another block: where they stand in this one is not known
    return nullptr;
}

void Session::row_changed(std::uint32_t table, jet::Row_Place row, const std::vector<Value>& before,
                          const std::vector<Value>& after) {
    const jet::Table changed = database_.table(table);
    told_.push_back({QString::fromStdU16String(changed.name()), row, after});
    if (watcher != nullptr)
        watcher->row_changed(told_.back().table, row_of(changed, before), row_of(changed, after));
}

Session::Told Session::own_change() {
    std::vector<Told> told = std::exchange(told_, {});
    SURE(!told.empty());
    Told own = std::move(told.back());
    told.pop_back();
    for (const Told& other : told) let_go(other.table);
    return own;
}

Found_Rows Session::rows_equal(const QString& table, const Row& row) {
    const jet::Table stored = stored_table(table);
    const auto cells = cells_of(stored, row);
    const auto key = stored.key();
    std::vector<jet::Cell> wanted; // with all cells another index might be taken for the search
    for (const jet::Cell& cell : cells)
        if (std::find(key.begin(), key.end(), cell.column) != key.end()) wanted.push_back(cell);
    Found_Rows found = nothing_of(table);
    for (auto at = stored.find(wanted.size() == key.size() && !key.empty() ? wanted : cells);
         at.next();) {
        const bool equal = std::all_of(cells.begin(), cells.end(), [&](const jet::Cell& cell) {
            return jet::same_value(at.value(cell.column), cell.value);
        });
        if (!equal) continue;
        found.order.push_back(static_cast<std::uint32_t>(found.block->size()));
        found.block->append(at.id(), at.values());
    }
    return found;
}

Found_Rows Session::nothing_of(const QString& table) {
    return {std::make_shared<Row_Block>(shape(table).columns), {}};
}

std::uint32_t Session::insert(const QString& table, Row_Block& block, const Row& cells,
                              Origin origin) {
    const jet::Table stored = stored_table(table);
    stored.insert(cells_of(stored, cells), origin);
    const Told own = own_change();
    const auto row = static_cast<std::uint32_t>(block.size());
    block.append(own.row, own.after);
    if (Held_Rows* const held = held_with(table, block)) held->list(row);
    return row;
}

void Session::update(const QString& table, Row_Block& block, std::uint32_t row, const Row& cells,
                     Origin origin) {
    const jet::Table stored = stored_table(table);
    stored.update(block.id(row), cells_of(stored, cells), origin);
    const Told own = own_change();
    Held_Rows* const held = held_with(table, block);
    if (held != nullptr) held->unlist(row);
    block.replace(row, own.after);
    if (held != nullptr) held->list(row);
}

void Session::erase(const QString& table, Row_Block& block, std::uint32_t row) {
    stored_table(table).erase(block.id(row));
    own_change();
    if (Held_Rows* const held = held_with(table, block)) held->remove(row);
}

} // namespace ado
