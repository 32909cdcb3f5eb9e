#include "platform/jet/rows/row_encoder.h"

#include <algorithm>

namespace jet {
namespace {

/// A moved row leaves a pointer of four bytes in its old place.
constexpr std::size_t shortest_row = 4;

void put_fixed(Bytes& row, const Definition& definition, const Raw_Cells& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const auto& column = definition.columns[i];
        if (!column.fixed() || !cells[i]) continue;
        const auto size = std::min(cells[i]->size(), column.fixed_size());
        std::copy_n(cells[i]->begin(), size, row.begin() + 2 + column.offset);
    }
}

/// Values one after the other, then where they end and, backwards, where they begin.
void append_variable(Bytes& row, const Definition& definition, const Raw_Cells& cells) {
    std::vector<const Bytes*> slots(definition.variable_slots);
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (!definition.columns[i].fixed() && !definition.columns[i].boolean() && cells[i])
            slots[definition.columns[i].slot] = &*cells[i];
    std::vector<std::size_t> offsets;
    for (const auto* value : slots) {
        offsets.push_back(row.size());
        if (value != nullptr) row.insert(row.end(), value->begin(), value->end());
    }
    offsets.push_back(row.size());
    const auto append = [&](std::size_t number) {
        row.push_back(static_cast<std::byte>(number));
        row.push_back(static_cast<std::byte>(number >> 8U));
    };
    std::for_each(offsets.rbegin(), offsets.rend(), append);
    append(definition.variable_slots);
}

} // namespace

Raw_Cells raw_cells(const Definition& definition, const Row_View& row) {
    Raw_Cells cells(definition.columns.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const auto& column = definition.columns[i];
        if (!row.has(column)) continue;
        cells[i].emplace();
        if (column.boolean()) continue;
        const auto bytes = row.cell(column).bytes();
        cells[i]->assign(bytes.begin(), bytes.end());
    }
    return cells;
}

Bytes encode_row(const Definition& definition, const Raw_Cells& cells) {
    Bytes row(2 + definition.fixed_end());
    store_u16(row.data(), definition.max_columns);
    put_fixed(row, definition, cells);
    if (definition.variable_slots > 0) append_variable(row, definition, cells);
    const std::size_t bitmap_size = (definition.max_columns + 7U) / 8U;
    const auto bitmap = std::max(row.size(), shortest_row - std::min(bitmap_size, shortest_row));
    row.resize(bitmap + bitmap_size);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const auto number = definition.columns[i].number;
        if (cells[i]) row[bitmap + number / 8U] |= static_cast<std::byte>(1U << number % 8U);
    }
    return row;
}

} // namespace jet
