#include "platform/jet/check/data_page.h"
#include "platform/jet/check/table.h"

namespace jet::check {

namespace {

constexpr std::size_t pointer_bytes = 4;
constexpr int most_hops = 16;

} // namespace

Table_Check::Table_Check(Inspection& inspection, const Definition& table)
    : inspection_(inspection), table_(table) {
    claim_pages();
    for (const Column& column : table.columns)
        if (column.is_long_value()) long_values_.emplace_back(inspection, table, column);
    for (const Real_Index& index : table.reals) {
        Keys keys;
        for (const Key_Column& key : index.columns) {
            const Column* column = table.column(key.number);
            keys.columns.emplace_back(column, key.ascending);
            keys.known = keys.known && has_known_keys(inspection.format, *column);
        }
        keys_.push_back(std::move(keys));
    }
}

std::vector<Tree_State> Table_Check::run(const Row_Visitor& visit) {
    scan(true, [&](const Row& row, Row_Place place) {
        check_row(row, place);
        if (visit) visit(*this, row, place);
    });
    if (!rows_complete_) inspection_.all_seen = false;
    report_unreached();
    check_trees();
    check_counts();
    if (rows_complete_)
        for (Long_Values& values : long_values_) values.report_unused();
    return std::move(trees_);
}

void Table_Check::claim_pages() {
    const Owner owner{.use = Owner::Use::data, .table = table_.page};
    const std::string use = inspection_.ledger.describe(owner);
    const auto owned = read_usage_map(inspection_, table_.owned, use);
    rows_complete_ = pages_complete_ = owned.has_value();
    if (!owned) {
        inspection_.all_seen = false;
        return;
    }
    for (const std::uint32_t page : *owned) {
        if (inspection_.ledger.claim(page, owner) &&
            check_data_page(inspection_, page, table_.page, use))
            pages_.push_back(page);
        else
            rows_complete_ = pages_complete_ = false;
    }
    check_free_map(inspection_, table_.free, *owned, use);
}

// The first time everything is checked and marked; later walks only read again.
void Table_Check::scan(bool first_time, const Seen_Row& seen) {
    Row row(inspection_.format, table_);
    for (const std::uint32_t number : pages_) {
        const Page held = inspection_.pages.page(number);
        const Data_Page page(inspection_.format, held.bytes);
        for (std::uint32_t k = 0; k < page.slot_count(); ++k) {
            const Slot slot = page.slot(k);
            const Row_Place place{number, k};
            if (first_time && slot.flags == Slot::moved_in) ++moved_in_;
            if ((slot.flags & Slot::moved_in) != 0) continue;
            if (first_time) ++rows_;
            Page keep;
            Bytes bytes = page.row(slot);
            if (slot.flags == Slot::pointer) {
                const Row_Place target = Row_Place::from(bytes.u32(0));
                if (first_time && !check_target(place, target)) continue;
                keep = inspection_.pages.page(target.page);
                const Data_Page there(inspection_.format, keep.bytes);
                bytes = there.row(there.slot(target.row));
            }
            const auto problem = row.take_apart(bytes);
            if (!problem)
                seen(row, place);
            else if (first_time)
                row_fault({table_.words, place}, *problem);
        }
    }
}

void Table_Check::row_fault(const Row_Name& where, const Problem& problem) {
    inspection_.findings.fault(problem.what, where.place.page,
                               words(where, " ", problem.words, "."));
    rows_complete_ = false;
}

// A row that has moved keeps its old place as its identity; what the old place says must lead to a
// slot of this table that only moved rows have.
bool Table_Check::check_target(Row_Place from, Row_Place to) {
    const auto refuse = [&](What what, std::string_view why) {
        inspection_.findings.fault(what, from.page,
                                   words(Row_Name{table_.words, from}, " has moved to row ", to.row,
                                         " of page ", to.page, ", ", why, "."));
        rows_complete_ = false;
        return false;
    };
    if (!std::ranges::binary_search(pages_, to.page))
        return refuse(What::moved_row_target, "which is no page of its rows");
    const Page held = inspection_.pages.page(to.page);
    const Data_Page page(inspection_.format, held.bytes);
    if (to.row >= page.slot_count()) return refuse(What::moved_row_target, "which is not there");
    const std::uint32_t flags = page.slot(to.row).flags;
    if (flags == Slot::pointer && is_loop(to))
        return refuse(What::moved_row_loop, "from where the pointers go in a circle");
    if (flags != Slot::moved_in)
        return refuse(What::moved_row_target, "which is no place of a moved row");
    if (!targets_.mark(to.page, to.row))
        return refuse(What::moved_row_shared, "where another row has moved, too");
    ++moved_;
    return true;
}

bool Table_Check::is_loop(Row_Place place) {
    for (int hop = 0; hop < most_hops; ++hop) {
        if (!std::ranges::binary_search(pages_, place.page)) return false;
        const Page held = inspection_.pages.page(place.page);
        const Data_Page page(inspection_.format, held.bytes);
        if (place.row >= page.slot_count() || page.slot(place.row).flags != Slot::pointer)
            return false;
        const Bytes row = page.row(page.slot(place.row));
        if (row.size() < pointer_bytes) return false;
        place = Row_Place::from(row.u32(0));
    }
    return true;
}

void Table_Check::report_unreached() {
    if (rows_complete_ && moved_in_ > moved_)
        inspection_.findings.warning(What::moved_row_unreached, table_.page,
                                     words(table_.words, " has ", moved_in_ - moved_,
                                           " moved rows that no pointer leads to."));
}

void Table_Check::check_row(const Row& row, Row_Place place) {
    const Row_Name where{table_.words, place};
    broken_values_.clear();
    if (row.has_stray_bits())
        inspection_.findings.warning(What::row_bitmap, place.page,
                                     words(where, " has null bits beyond its columns."));
    for (const Column& column : table_.columns) check_value(column, row.value(column), where);
    Key entry;
    for (std::uint32_t i = 0; i < keys_.size(); ++i) {
        if (make_entry(i, row, place, entry)) keys_[i].tally.add(entry);
        check_nulls(i, row, where);
    }
}

void Table_Check::check_value(const Column& column, const Value& value, const Row_Name& where) {
    if (value.null) {
        if (column.required)
            inspection_.findings.content(What::null_in_required_column, where.place.page,
                                         words(where, " has nothing in column ",
                                               quoted(column.name), ", which requires a value."));
        return;
    }
    if (Long_Values* values = long_values(column)) {
        if (!values->use(value.bytes, where)) {
            broken_values_.insert(column.number);
            rows_complete_ = false;
        }
    } else if (const auto problem = value_problem(inspection_.format, column, value)) {
        row_fault(where,
                  {problem->what, words("in column ", quoted(column.name), " ", problem->words)});
    } else {
        check_text_rules(column, value, where);
        count_autonumber(column, value);
    }
}

void Table_Check::check_text_rules(const Column& column, const Value& value,
                                   const Row_Name& where) {
    if (const auto problem = length_problem(inspection_.format, column, value))
        inspection_.findings.warning(
            problem->what, where.place.page,
            words(where, " in column ", quoted(column.name), " ", problem->words, "."));
    if (column.empty_text_forbidden && column.is_text() && value.bytes.size() == 0)
        inspection_.findings.warning(What::empty_text_forbidden, where.place.page,
                                     words(where, " has an empty text in column ",
                                           quoted(column.name), ", which forbids it."));
}

void Table_Check::count_autonumber(const Column& column, const Value& value) {
    if (column.type != column_type::long_integer || (column.flags & column_flag::autonumber) == 0)
        return;
    const auto number = static_cast<std::int32_t>(value.bytes.u32(0));
    if (number == std::numeric_limits<std::int32_t>::max()) return; // none could be given after it
    highest_autonumber_ = std::max(highest_autonumber_, number);
}

void Table_Check::check_counts() {
    if (pages_complete_ && rows_ != table_.rows) {
        const std::string sentence = words(table_.words, " has ", rows_,
                                           " rows, but its definition says ", table_.rows, ".");
        if (table_.system)
            inspection_.findings.warning(What::row_count, table_.page, sentence);
        else
            inspection_.findings.fault(What::row_count, table_.page, sentence);
    }
    if (static_cast<std::int32_t>(table_.autonumber) < highest_autonumber_)
        inspection_.findings.warning(What::autonumber, table_.page,
                                     words(table_.words, " says that the last number given was ",
                                           static_cast<std::int32_t>(table_.autonumber),
                                           ", but a row has ", highest_autonumber_, "."));
}

Long_Values* Table_Check::long_values(const Column& column) {
    if (!column.is_long_value()) return nullptr;
    const auto found = std::ranges::find(long_values_, column.number, &Long_Values::column);
    return found == long_values_.end() ? nullptr : &*found;
}

std::u16string Table_Check::text(const Row& row, const Column& column) {
    constexpr std::size_t enough = 4096;
    const Value value = row.value(column);
    if (value.null) return {};
    if (!column.is_long_value()) return decode_text(inspection_.format, value.bytes).units;
    const std::vector<std::byte> bytes = long_value(row, column, enough);
    return decode_text(inspection_.format, Bytes(bytes)).units;
}

std::vector<std::byte> Table_Check::long_value(const Row& row, const Column& column,
                                               std::size_t limit) {
    const Value value = row.value(column);
    Long_Values* values = long_values(column);
    if (value.null || values == nullptr || broken_values_.contains(column.number)) return {};
    return values->read(value.bytes, limit);
}

} // namespace jet::check
