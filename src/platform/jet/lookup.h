#pragma once

#include "platform/jet/engine.h"

#include <optional>
#include <span>
#include <vector>

namespace jet {

/// The rows of a table by ascending primary key; nothing when it has none.
std::optional<std::vector<Row_Place>> rows_in_key_order(Engine& engine, const Table_State& table);

/// The real index that finds rows by these columns (positions in Table::columns()): one whose first
/// columns are among them, as many as possible.
struct Access_Path {
    std::size_t real = 0;
    std::vector<std::size_t> columns; ///< in the order of the index
};
std::optional<Access_Path> access_path(const Table_State& table,
                                       std::span<const std::size_t> columns);

/// Rows whose key begins with these values, in the order of the index. Texts that differ only in
/// case have one key, so the rows are still to be compared.
std::vector<Row_Place> rows_with_key(Engine& engine, const Table_State& table, std::size_t real,
                                     std::span<const Value> values);

/// Position of a column in Definition::columns (and Table::columns()).
std::size_t position_of(const Definition& definition, std::uint16_t column_number);

/// The values of an index out of those of a row, in the order of the index.
std::vector<Value> values_of(const Definition& definition, const Real_Index& index,
                             const std::vector<Value>& row);
/// The same out of the row on which the source stands.
std::vector<Value> values_at(const Row_Source& source, std::span<const Index_Part> parts);

/// The value of one cell of the row on which the source stands.
Value value_at(const Row_Source& source, std::size_t column);

} // namespace jet
