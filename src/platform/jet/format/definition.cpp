#include "platform/jet/format/definition.h"

#include "platform/jet/format/text.h"

#include <algorithm>
#include <set>

namespace jet {
namespace {

/// Walks over the blocks, one record after the other.
class Walker {
public:
    Walker(View view, std::size_t at) : view_(view), at_(at) {}
    View take(std::size_t size) {
        const auto part = view_.part(at_, size);
        at_ += size;
        return part;
    }
    std::size_t at() const { return at_; }
    const View& view() const { return view_; }

private:
    View view_;
    std::size_t at_;
};

Record copy(const View& view) { return {view.bytes().begin(), view.bytes().end()}; }

std::u16string take_name(Walker& walker, const Layout& layout) {
    const auto length = walker.take(layout.name_length_size).number(0, layout.name_length_size);
    const auto stored = walker.take(length);
    std::u16string name;
    if (layout.jet3)
        decode_ansi(stored.bytes(), name);
    else
        decode_text(stored.bytes(), name);
    return name;
}

Column_Record decode_column(const Layout& layout, const View& record, std::size_t place) {
    Column_Record column;
    column.record = copy(record);
    column.place = place;
    column.type = static_cast<Column_Type>(record.u8(0));
    column.number = record.u16(layout.column_number);
    column.slot = record.u16(layout.column_slot);
    column.extra =
        layout.jet3 ? record.u16(layout.column_extra + 2) : record.u32(layout.column_extra);
    column.flags = record.u8(layout.column_flags);
    column.more_flags = layout.jet3 ? std::uint8_t{0} : record.u8(layout.column_flags + 1);
    column.offset = record.u16(layout.column_offset);
    column.length = record.u16(layout.column_length);
    return column;
}

Real_Index decode_real(const Layout& layout, const View& record) {
    Real_Index index;
    index.record = copy(record);
    for (std::size_t i = 0; i < 10; ++i) {
        const auto at = layout.real_columns + 3 * i;
        if (record.u16(at) != 0xFFFF)
            index.columns.push_back({record.u16(at), (record.u8(at + 2) & 1U) != 0});
    }
    index.map = Row_Place::from(record.u32(layout.real_map));
    index.root = record.u32(layout.real_root);
    index.flags = record.u8(layout.real_flags);
    return index;
}

Logical_Index decode_logical(const Layout& layout, const View& record) {
    const auto at = layout.logical_number;
    Logical_Index index;
    index.record = copy(record);
    index.number = record.u32(at);
    index.real = record.u32(at + 4);
    index.side = static_cast<Side>(record.u8(at + 8));
    index.partner = record.u32(at + 9);
    index.partner_table = record.u32(at + 13);
    index.kind = static_cast<Index_Kind>(record.u8(at + 19));
    if (index.kind == Index_Kind::relation) { // elsewhere these bytes are junk
        index.cascade_update = (record.u8(at + 17) & 1U) != 0;
        index.cascade_delete = (record.u8(at + 18) & 1U) != 0;
        index.null_on_delete = (record.u8(at + 18) & 2U) != 0;
    }
    return index;
}

void check_columns(const Definition& definition, const View& view) {
    std::set<std::uint16_t> numbers;
    std::set<std::uint16_t> slots;
    for (const auto& column : definition.columns) {
        if (column.name.empty()) view.fail("a column without a name");
        if (column.number >= definition.max_columns || !numbers.insert(column.number).second)
            view.fail("column number " + std::to_string(column.number) + " is impossible");
        if (!column.fixed() && !column.boolean() &&
            (column.slot >= definition.variable_slots || !slots.insert(column.slot).second))
            view.fail("variable slot " + std::to_string(column.slot) + " is impossible");
        if (column.fixed() && column.offset + column.fixed_size() > definition.layout->page_size)
            view.fail("a fixed column lies beyond the row");
    }
}

void check_indexes(const Definition& definition, const View& view) {
    for (const auto& real : definition.reals) {
        if (real.columns.empty()) view.fail("an index without columns");
        for (const auto& part : real.columns)
            if (definition.by_number(part.column) == nullptr)
                view.fail("an index over a column that does not exist");
    }
    for (const auto& logical : definition.logicals)
        if (logical.real >= definition.reals.size())
            view.fail("a logical index without a real one");
}

void parse_columns(Definition& definition, Walker& walker, std::size_t count) {
    const auto& layout = *definition.layout;
    for (std::size_t i = 0; i < count; ++i)
        definition.columns.push_back(decode_column(layout, walker.take(layout.column_record), i));
    for (auto& column : definition.columns) column.name = take_name(walker, layout);
    std::sort(definition.columns.begin(), definition.columns.end(),
              [](const auto& a, const auto& b) { return a.number < b.number; });
    definition.first_variable = 0xFFFF;
    for (const auto& column : definition.columns)
        if (!column.fixed() && !column.boolean())
            definition.first_variable = std::min(definition.first_variable, column.number);
}

void parse_indexes(Definition& definition, Walker& walker, std::size_t reals,
                   std::size_t logicals) {
    const auto& layout = *definition.layout;
    for (std::size_t i = 0; i < reals; ++i)
        definition.reals.push_back(decode_real(layout, walker.take(layout.real_record)));
    for (std::size_t i = 0; i < logicals; ++i)
        definition.logicals.push_back(decode_logical(layout, walker.take(layout.logical_record)));
    for (auto& logical : definition.logicals) logical.name = take_name(walker, layout);
}

void parse_long_maps(Definition& definition, Walker& walker) {
    while (true) {
        const auto number = walker.take(2).u16(0);
        if (number == 0xFFFF) return;
        const auto maps = walker.take(8);
        definition.long_maps.push_back(
            {number, Row_Place::from(maps.u32(0)), Row_Place::from(maps.u32(4))});
    }
}

void append(Record& into, const Record& bytes) {
    into.insert(into.end(), bytes.begin(), bytes.end());
}

void append_number(Record& into, std::uint64_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i, number >>= 8U)
        into.push_back(static_cast<std::byte>(number));
}

void append_name(Record& into, const std::u16string& name) {
    append_number(into, 2 * name.size(), 2);
    append(into, encode_plain(name));
}

std::vector<const Column_Record*> in_record_order(const Definition& definition) {
    std::vector<const Column_Record*> columns;
    for (const auto& column : definition.columns) columns.push_back(&column);
    std::sort(columns.begin(), columns.end(),
              [](const auto* a, const auto* b) { return a->place < b->place; });
    return columns;
}

} // namespace

std::size_t Column_Record::fixed_size() const {
    switch (type) {
    case Column_Type::boolean:
        return 0;
    case Column_Type::byte:
        return 1;
    case Column_Type::integer:
        return 2;
    case Column_Type::long_integer:
    case Column_Type::single_float:
        return 4;
    case Column_Type::currency:
    case Column_Type::double_float:
    case Column_Type::date:
        return 8;
    case Column_Type::guid:
        return 16;
    case Column_Type::decimal:
        return 17;
    default:
        return length;
    }
}

const Column_Record* Definition::by_number(std::uint16_t number) const {
    const auto found =
        std::lower_bound(columns.begin(), columns.end(), number,
                         [](const Column_Record& column, auto n) { return column.number < n; });
    return found != columns.end() && found->number == number ? &*found : nullptr;
}

const Logical_Index* Definition::primary_key() const {
    for (const auto& logical : logicals)
        if (logical.kind == Index_Kind::primary) return &logical;
    return nullptr;
}

std::size_t Definition::fixed_end() const {
    std::size_t end = 0;
    for (const auto& column : columns)
        if (column.fixed()) end = std::max(end, column.offset + column.fixed_size());
    return end;
}

Definition parse_definition(const Layout& layout, Page_Number first, const Record& joined) {
    const View view(joined, first);
    Definition definition;
    definition.layout = &layout;
    definition.chain = {first};
    Walker walker(view, 0);
    definition.head = copy(walker.take(layout.blocks));
    definition.owned = Row_Place::from(view.u32(layout.owned_map));
    definition.free = Row_Place::from(view.u32(layout.free_map));
    definition.max_columns = view.u16(layout.max_columns);
    definition.variable_slots = view.u16(layout.variable_slots);
    const auto columns = view.u16(layout.columns);
    const auto logicals = view.u32(layout.logical_indexes);
    const auto reals = view.u32(layout.real_indexes);
    if (columns > definition.max_columns || definition.max_columns > 2048)
        view.fail("an impossible number of columns");
    if (reals > joined.size() || logicals > joined.size())
        view.fail("an impossible number of indexes");
    definition.entry_counts = copy(walker.take(layout.entry_count_size * reals));
    parse_columns(definition, walker, columns);
    parse_indexes(definition, walker, reals, logicals);
    parse_long_maps(definition, walker);
    definition.tail = copy(walker.take(joined.size() - walker.at()));
    check_columns(definition, view);
    check_indexes(definition, view);
    return definition;
}

Record join_definition(const Definition& definition) {
    const auto& layout = *definition.layout;
    const auto columns = in_record_order(definition);
    Record joined = definition.head;
    append(joined, definition.entry_counts);
    for (const auto* column : columns) append(joined, column->record);
    for (const auto* column : columns) append_name(joined, column->name);
    for (const auto& real : definition.reals) append(joined, real.record);
    for (const auto& logical : definition.logicals) append(joined, logical.record);
    for (const auto& logical : definition.logicals) append_name(joined, logical.name);
    for (const auto& maps : definition.long_maps) {
        append_number(joined, maps.column, 2);
        append_number(joined, maps.owned.number(), 4);
        append_number(joined, maps.free.number(), 4);
    }
    append_number(joined, 0xFFFF, 2);
    append(joined, definition.tail);
    store_u32(joined.data() + 8, joined.size());
    store_u16(joined.data() + layout.max_columns, definition.max_columns);
    store_u16(joined.data() + layout.variable_slots, definition.variable_slots);
    store_u16(joined.data() + layout.columns, definition.columns.size());
    store_u32(joined.data() + layout.logical_indexes, definition.logicals.size());
    store_u32(joined.data() + layout.real_indexes, definition.reals.size());
    return joined;
}

} // namespace jet
