#include "platform/jet/table_writer.h"

#include "platform/jet/lookup.h"
#include "platform/jet/rows/long_value.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::size_t longest_one_row = 4076;
constexpr std::size_t longest_piece = 4072; ///< a pointer to the next one goes before it
constexpr std::size_t unique_count_in_block = 4;

} // namespace

Row_Heap Table_Writer::heap() const {
    return {*pager_, space_, *hints_, definition_->page(), definition_->owned, definition_->free};
}

Row_Heap Table_Writer::long_heap(const Column_Record& column) const {
    for (const auto& maps : definition_->long_maps)
        if (maps.column == column.number && maps.owned.page != 0)
            return {*pager_, space_, *hints_, Row_Heap::long_values, maps.owned, maps.free};
    throw damaged(definition_->page(), "a column of long values without maps");
}

Index_Tree Table_Writer::tree(std::size_t real) const {
    const auto& index = definition_->reals[real];
    return {*pager_, definition_->page(), index.root, index.map};
}

std::optional<Bytes> Table_Writer::key(std::size_t real, const std::vector<Value>& values) const {
    const auto of_index = jet::values_of(*definition_, definition_->reals[real], values);
    const auto& shape = table_->shapes[real];
    if (null_rule(shape, of_index) == Null_Rule::left_out) return std::nullopt;
    return key_of(shape.columns, of_index);
}

Bytes Table_Writer::store_long(const Column_Record& column, const Bytes& data) const {
    using Kind = Long_Header::Kind;
    auto rows = long_heap(column);
    if (data.size() <= longest_one_row)
        return Long_Header{data.size(), Kind::one_row, rows.add(data, Slot_Kind::live), 0}.bytes();
    // The last piece goes first, since each one names the next. The first one takes a page of its
    // own: the stamp of the page and that in the header are both 0 then.
    Row_Place next;
    for (auto at = (data.size() - 1) / longest_piece * longest_piece;; at -= longest_piece) {
        const auto size = std::min(longest_piece, data.size() - at);
        Bytes piece(4);
        store_u32(piece.data(), next.number());
        const auto begin = data.begin() + static_cast<std::ptrdiff_t>(at);
        piece.insert(piece.end(), begin, begin + static_cast<std::ptrdiff_t>(size));
        next = rows.add(piece, Slot_Kind::live, at == 0);
        if (at == 0) return Long_Header{data.size(), Kind::chain, next, 0}.bytes();
    }
}

void Table_Writer::free_long(const Column_Record& column, const Bytes& cell) const {
    const View view(cell, definition_->page());
    const auto pieces = long_value_pieces(*pager_, jet4_layout, view);
    if (pieces.empty()) return;
    auto rows = long_heap(column);
    for (const auto& piece : pieces) rows.remove(piece);
}

void Table_Writer::free_long_values(const Raw_Cells& cells) const {
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (definition_->columns[i].long_value() && cells[i])
            free_long(definition_->columns[i], *cells[i]);
}

std::optional<Bytes> Table_Writer::stored_cell(const New_Row& row, std::size_t column) const {
    const bool beside = !row.beside.empty() && row.beside[column];
    return beside ? store_long(definition_->columns[column], *row.cells[column])
                  : row.cells[column];
}

std::optional<Stored_Row> Table_Writer::stored(Row_Place id, bool all) const {
    Row_Source source(*pager_, *definition_);
    if (!source.find(id)) return std::nullopt;
    Stored_Row row{id, source.place(), std::vector<Value>(definition_->columns.size()),
                   raw_cells(*definition_, source.row()), source.row().bytes().size()};
    if (all)
        for (std::size_t i = 0; i < row.values.size(); ++i) row.values[i] = value_at(source, i);
    else
        for (const auto& real : definition_->reals)
            for (const auto& part : real.columns) {
                const auto position = position_of(*definition_, part.column);
                row.values[position] = value_at(source, position);
            }
    return row;
}

void Table_Writer::add_to_count(std::size_t at, std::int32_t by) {
    auto* field = pager_->change(definition_->page()).data() + at;
    const auto count = load_u32(field);
    if (by >= 0 || count > 0) store_u32(field, count + static_cast<std::uint32_t>(by));
}

void Table_Writer::add_entry(std::size_t real, const Bytes& key, Row_Place id) {
    if (tree(real).insert(space_, key, id))
        add_to_count(
            jet4_layout.blocks + jet4_layout.entry_count_size * real + unique_count_in_block, 1);
}

Row_Place Table_Writer::insert(const New_Row& row) {
    Raw_Cells cells(row.cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = stored_cell(row, i);
    const auto id = heap().add(encode_row(*definition_, cells), Slot_Kind::live);
    for (std::size_t real = 0; real < definition_->reals.size(); ++real)
        if (const auto entry = key(real, row.values)) add_entry(real, *entry, id);
    add_to_count(jet4_layout.row_count, 1);
    return id;
}

void Table_Writer::replace_row(Row_Place id, Row_Place place, const Bytes& row) {
    auto rows = heap();
    const bool moved = place != id;
    if (rows.replace(id, row, Slot_Kind::live)) { // a moved row may find room at home
        if (moved) rows.remove(place);
        return;
    }
    if (moved && rows.replace(place, row, Slot_Kind::moved)) return;
    const auto at = rows.add(row, Slot_Kind::moved);
    if (moved) rows.remove(place);
    Bytes to_it(4);
    store_u32(to_it.data(), at.number());
    if (!rows.replace(id, to_it, Slot_Kind::pointer)) // shorter than any row of ours
        throw damaged(id.page, "a row has no room for its pointer");
}

void Table_Writer::update(const Stored_Row& before, const New_Row& row) {
    auto cells = before.cells;
    Raw_Cells replaced(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (row.changed[i]) replaced[i] = std::exchange(cells[i], stored_cell(row, i));
    replace_row(before.id, before.place, encode_row(*definition_, cells));
    free_long_values(replaced);
    for (std::size_t real = 0; real < definition_->reals.size(); ++real) {
        const auto old_key = key(real, before.values);
        const auto new_key = key(real, row.values);
        if (old_key == new_key) continue;
        if (old_key) tree(real).erase(space_, *old_key, before.id);
        if (new_key) add_entry(real, *new_key, before.id);
    }
}

void Table_Writer::erase(const Stored_Row& row) {
    free_long_values(row.cells);
    auto rows = heap();
    if (row.place != row.id) rows.remove(row.place);
    rows.remove(row.id);
    for (std::size_t real = 0; real < definition_->reals.size(); ++real)
        if (const auto entry = key(real, row.values)) tree(real).erase(space_, *entry, row.id);
    add_to_count(jet4_layout.row_count, -1);
}

void Table_Writer::rewrite(Row_Place id, const Definition& before) {
    Row_Source source(*pager_, before);
    if (!source.find(id)) throw damaged(id.page, "a row that is no longer there");
    auto cells = raw_cells(before, source.row());
    cells.resize(definition_->columns.size()); // the new columns come last
    replace_row(id, source.place(), encode_row(*definition_, cells));
}

std::int32_t Table_Writer::last_auto_number() const {
    const Page page = pager_->read(definition_->page());
    return View(*page, definition_->page()).i32(jet4_layout.auto_number);
}

void Table_Writer::set_auto_number(std::int32_t last) {
    store_u32(pager_->change(definition_->page()).data() + jet4_layout.auto_number,
              static_cast<std::uint32_t>(last));
}

} // namespace jet
