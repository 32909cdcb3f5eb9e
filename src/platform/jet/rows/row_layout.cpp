#include "platform/jet/rows/row_layout.h"

#include "platform/jet/format/text.h"
#include "platform/jet/rows/long_value.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::size_t longest_in_row = 64; ///< a long value beside its header
constexpr std::size_t all_in_row = 1024;   ///< the same for all columns of a row together

bool is_there(const Column_Record& column, const Value& value) {
    return column.boolean() ? std::get<bool>(value) : !is_null(value);
}

void check_maps(const Definition& definition, const Column_Record& column) {
    const bool has_maps = std::any_of(
        definition.long_maps.begin(), definition.long_maps.end(), [&](const Long_Maps& maps) {
            return maps.column == column.number && maps.owned.page != 0;
        });
    if (!has_maps) throw damaged(definition.page(), "a column of long values without maps");
}

Bytes with_header(const Bytes& data) {
    auto cell = Long_Header{data.size(), Long_Header::Kind::in_row, {}, 0}.bytes();
    cell.insert(cell.end(), data.begin(), data.end());
    return cell;
}

void place_long(const Definition& definition, New_Row& row, std::size_t column) {
    check_maps(definition, definition.columns[column]);
    auto& cell = *row.cells[column];
    if (cell.size() <= std::min(longest_in_row, all_in_row / definition.long_maps.size())) {
        cell = with_header(cell);
        return;
    }
    row.beside.resize(row.cells.size());
    row.beside[column] = true;
}

/// What encode_row() will make.
std::size_t length_of(const Definition& definition, const New_Row& row, const Raw_Cells& kept) {
    const std::size_t slots = definition.variable_slots;
    auto length = 2 + definition.fixed_end() + (slots > 0 ? 2 * slots + 4 : 0) +
                  (definition.max_columns + 7U) / 8U;
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
        const auto& cell = row.changed[i] ? row.cells[i] : kept[i];
        if (!cell || definition.columns[i].fixed()) continue;
        const bool beside = !row.beside.empty() && row.beside[i];
        length += beside ? Long_Header::size : cell->size();
    }
    return length;
}

void shorten(const Definition& definition, New_Row& row, Origin origin) {
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        auto& cell = row.cells[i];
        const auto& column = definition.columns[i];
        if (!cell || column.fixed()) continue;
        if (column.type == Column_Type::text && origin == Origin::restored)
            cell = encode_shortest(std::get<std::u16string>(row.values[i]));
        row.beside.resize(row.cells.size());
        if (!column.long_value() || row.beside[i] || cell->size() == Long_Header::size) continue;
        cell->erase(cell->begin(), cell->begin() + Long_Header::size);
        row.beside[i] = true;
    }
}

} // namespace

bool lay_out(const Definition& definition, New_Row& row, const Raw_Cells& kept, std::size_t longest,
             Origin origin) {
    row.cells.assign(row.values.size(), std::nullopt);
    row.beside.clear();
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        const auto& column = definition.columns[i];
        if (!row.changed[i] || !is_there(column, row.values[i])) continue;
        row.cells[i] = encode_cell(column, row.values[i]);
        if (column.long_value()) place_long(definition, row, i);
    }
    if (length_of(definition, row, kept) <= longest) return true;
    shorten(definition, row, origin);
    return length_of(definition, row, kept) <= longest;
}

} // namespace jet
