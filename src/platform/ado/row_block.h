#pragma once

#include "platform/ado/numbers.h"
#include "platform/ado/value.h"
#include "platform/jet/database.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ado {

/// Whether a column of this type can hold the number.
bool fits(std::int32_t number, jet::Column_Type type);

/// Rows of one table in memory, column by column, so that a whole table of numbers can be held.
class Row_Block {
public:
    struct Column {
        QString name;
        /// Place in the table; nothing: completed in memory only and null in every row.
        std::optional<std::size_t> source;
        bool whole = false; ///< Byte, Integer or Long
    };

    /// @param for_reading the places of rows are not kept: they cannot be changed
    explicit Row_Block(std::vector<Column> columns, bool for_reading = false);

    const std::vector<Column>& columns() const { return columns_; }
    std::optional<std::size_t> column(QStringView name) const; ///< without regard to case
    std::size_t known_column(QStringView name) const;          ///< one that was asked for

    std::size_t size() const { return size_; }
    void append(const jet::Cursor& row);
    /// @param values all of the table
    void append(jet::Row_Place id, std::span<const Value> values);
    void replace(std::size_t row, std::span<const Value> values);

    jet::Row_Place id(std::size_t row) const { return {pages_.at(row), slots_.at(row)}; }
    bool null(std::size_t row, std::size_t column) const;
    /// Value of a whole column, null as 0.
    std::int32_t whole(std::size_t row, std::size_t column) const {
        return cells_[column].numbers[row];
    }
    std::optional<std::int32_t> number(std::size_t row, std::size_t column) const {
        return all_whole(column) ? whole(row, column) : number_of_any(row, column);
    }
    /// The same with 0 for what is no number.
    std::int32_t number_or_0(std::size_t row, std::size_t column) const {
        if (columns_[column].whole && columns_[column].source) return whole(row, column);
        return number(row, column).value_or(0);
    }
    Value value(std::size_t row, std::size_t column) const;
    /// Whether the column holds whole numbers and nothing else.
    bool all_whole(std::size_t column) const {
        return columns_[column].whole && columns_[column].source && cells_[column].nulls.empty();
    }
    /// Negative, 0 or positive; null comes first.
    int compare(std::size_t one, std::size_t other, std::size_t column) const;

private:
    struct Cells {
        Numbers numbers;           ///< of a whole column
        std::vector<bool> nulls;   ///< of a whole column; shorter: the rest is not null
        std::vector<Value> values; ///< of any other column
        void mark(std::size_t row, bool null);
    };
    std::optional<std::int32_t> number_of_any(std::size_t row, std::size_t column) const;
    void append_id(jet::Row_Place id);

    std::vector<Column> columns_;
    std::vector<Cells> cells_;
    bool for_reading_;
    std::size_t size_ = 0;
    std::vector<std::uint32_t> pages_; // Row_Place in five bytes
    std::vector<std::uint8_t> slots_;
};

} // namespace ado
