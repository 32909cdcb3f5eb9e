#include "platform/ado/row_block.h"

#include "platform/failure/sure.h"

#include <limits>

namespace ado {

bool fits(std::int32_t number, jet::Column_Type type) {
    using Small = std::numeric_limits<std::int16_t>;
    switch (type) {
    case jet::Column_Type::byte:
        return number >= 0 && number <= 255;
    case jet::Column_Type::integer:
        return number >= Small::min() && number <= Small::max();
    default:
        return true;
    }
}

Row_Block::Row_Block(std::vector<Column> columns, bool for_reading)
    : columns_(std::move(columns)), cells_(columns_.size()), for_reading_(for_reading) {}

void Row_Block::append_id(jet::Row_Place id) {
    ++size_;
    if (for_reading_) return;
    pages_.push_back(id.page);
    slots_.push_back(id.slot);
}

std::optional<std::size_t> Row_Block::column(QStringView name) const {
    for (std::size_t i = 0; i < columns_.size(); ++i)
        if (name.compare(columns_[i].name, Qt::CaseInsensitive) == 0) return i;
    return std::nullopt;
}

std::size_t Row_Block::known_column(QStringView name) const {
    const auto found = column(name);
    SURE(found);
    return *found;
}

void Row_Block::Cells::mark(std::size_t row, bool null) {
    if (!null && row >= nulls.size()) return;
    if (row >= nulls.size()) nulls.resize(row + 1);
    nulls[row] = null;
}

void Row_Block::append(const jet::Cursor& row) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (!columns_[i].source) continue;
        const std::size_t source = *columns_[i].source;
        if (columns_[i].whole) {
            const std::int32_t number = row.integer(source);
            cells_[i].numbers.push_back(number);
            if (number == 0 && row.is_null(source)) cells_[i].mark(size(), true);
        } else {
            cells_[i].values.push_back(row.value(source));
        }
    }
    append_id(row.id());
}

void Row_Block::append(jet::Row_Place id, std::span<const Value> values) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (!columns_[i].source) continue;
        if (columns_[i].whole)
            cells_[i].numbers.push_back(0);
        else
            cells_[i].values.emplace_back();
    }
    append_id(id);
    replace(size() - 1, values);
}

void Row_Block::replace(std::size_t row, std::span<const Value> values) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (!columns_[i].source) continue;
        SURE(*columns_[i].source < values.size());
        const Value& value = values[*columns_[i].source];
        if (columns_[i].whole) {
            cells_[i].numbers.set(row, ado::number(value).value_or(0));
            cells_[i].mark(row, is_null(value));
        } else {
            cells_[i].values[row] = value;
        }
    }
}

bool Row_Block::null(std::size_t row, std::size_t column) const {
    if (!columns_[column].source) return true;
    const Cells& cells = cells_[column];
    if (columns_[column].whole) return row < cells.nulls.size() && cells.nulls[row];
    return is_null(cells.values[row]);
}

std::optional<std::int32_t> Row_Block::number_of_any(std::size_t row, std::size_t column) const {
    if (null(row, column)) return std::nullopt;
    return columns_[column].whole ? whole(row, column) : ado::number(cells_[column].values[row]);
}

Value Row_Block::value(std::size_t row, std::size_t column) const {
    if (null(row, column)) return ado::null();
    return columns_[column].whole ? Value(whole(row, column)) : cells_[column].values[row];
}

int Row_Block::compare(std::size_t one, std::size_t other, std::size_t column) const {
    if (all_whole(column)) {
        const std::int32_t left = whole(one, column);
        const std::int32_t right = whole(other, column);
        return left < right ? -1 : left > right ? 1 : 0;
    }
    const auto left = number(one, column);
    const auto right = number(other, column);
    if (left || right || null(one, column) || null(other, column))
        return left < right ? -1 : left > right ? 1 : 0;
    const auto left_text = ado::text(cells_[column].values[one]).value_or(QString());
    return left_text.compare(ado::text(cells_[column].values[other]).value_or(QString()),
                             Qt::CaseInsensitive);
}

} // namespace ado
