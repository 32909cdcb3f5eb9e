#include "platform/jet/check/table.h"

namespace jet::check {

namespace {

constexpr std::size_t most_suspects = 10000, most_told = 10;

void append_place(Key& entry, Row_Place place) {
    for (const int shift : {16, 8, 0})
        entry.push_back(static_cast<std::uint8_t>(place.page >> shift));
    entry.push_back(static_cast<std::uint8_t>(place.row));
}

std::vector<Key> without(const std::vector<Key>& all, const std::vector<Key>& others) {
    std::vector<Key> rest;
    std::ranges::set_difference(all, others, std::back_inserter(rest), precedes);
    return rest;
}

} // namespace

/// Makes the entry that a tree should have for a row; only its place where keys are not known.
/// @return false when the row has no entry.
bool Table_Check::make_entry(std::uint32_t number, const Row& row, Row_Place place, Key& entry) {
    const Keys& keys = keys_[number];
    std::size_t nulls = 0;
    entry.clear();
    for (const auto& [column, ascending] : keys.columns) {
        const Value value = row.value(*column);
        if (value.null) ++nulls;
        if (keys.known)
            append_key(entry, *column, value, column->is_text() ? text(row, *column) : u"",
                       ascending);
    }
    append_place(entry, place);
    return !(table_.reals[number].ignores_nulls() && nulls == keys.columns.size());
}

void Table_Check::check_nulls(std::uint32_t number, const Row& row, const Row_Name& where) {
    if (!table_.reals[number].required()) return;
    for (const auto& [column, ascending] : keys_[number].columns)
        if (row.value(*column).null)
            inspection_.findings.fault(What::index_null, where.place.page,
                                       words(where, " has nothing in column ", quoted(column->name),
                                             ", which ", table_.reals[number].words, " requires."));
}

void Table_Check::check_trees() {
    for (std::uint32_t i = 0; i < keys_.size(); ++i) {
        Keys& keys = keys_[i];
        const Tree_State state = check_tree(inspection_, table_, i, [&](const Key& entry) {
            if (keys.known) return keys.tally.take(entry);
            keys.tally.take(Tally::Entry(entry).last(place_bytes));
        });
        trees_.push_back(state);
        if (state.complete && rows_complete_ && !keys.tally.balanced()) explain(i);
    }
}

// The walk over rows and tree is done again, keeping the entries that can differ.
void Table_Check::explain(std::uint32_t number) {
    const Keys& keys = keys_[number];
    std::vector<Key> rows, tree;
    scan(false, [&](const Row& row, Row_Place place) {
        Key entry;
        if (make_entry(number, row, place, entry) && keys.tally.suspects(entry) &&
            rows.size() < most_suspects)
            rows.push_back(std::move(entry));
    });
    visit_tree(inspection_, table_.reals[number].root, [&](const Key& entry) {
        Key kept(keys.known ? entry.begin() : entry.end() - place_bytes, entry.end());
        if (keys.tally.suspects(kept) && tree.size() < most_suspects)
            tree.push_back(std::move(kept));
    });
    report_differences(number, rows, tree);
}

void Table_Check::report_differences(std::uint32_t number, std::vector<Key>& rows,
                                     std::vector<Key>& tree) {
    std::ranges::sort(rows, precedes);
    std::ranges::sort(tree, precedes);
    std::vector<Key> missing = without(rows, tree), extra = without(tree, rows);
    const std::string& index = table_.reals[number].words;
    std::size_t told = 0;
    const auto tell = [&](What what, Row_Place place, std::string_view verdict) {
        trees_[number].complete = false;
        if (told++ < most_told)
            inspection_.findings.fault(
                what, place.page,
                words(Row_Name{table_.words, place}, " ", verdict, " ", index, "."));
    };
    for (const Key& entry : missing) {
        const Row_Place place = place_of(entry);
        const auto wrong =
            std::ranges::find_if(extra, [&](const Key& other) { return place_of(other) == place; });
        const bool has_wrong = wrong != extra.end();
        if (has_wrong) extra.erase(wrong);
        tell(has_wrong ? What::index_key : What::index_entry_missing, place,
             has_wrong ? "has an entry that does not fit its values in" : "has no entry in");
    }
    for (const Key& entry : extra)
        tell(What::index_entry_extra, place_of(entry), "is not there, but has an entry in");
}

} // namespace jet::check
