#include "platform/jet/catalogue/definition_builder.h"

#include "platform/failure/sure.h"
#include "platform/jet/format/text.h"
#include "platform/jet/index/index_key.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint16_t record_mark = 0x659;
constexpr std::uint16_t real_mark = 0x783;
constexpr std::uint8_t user_table = 0x4E;
constexpr std::uint8_t system_table = 0x53;
constexpr std::uint8_t no_cascades = 4; // what stands there where there is no relation

/// Whether the value has a fixed place in the row.
bool fixed_type(Column_Type type) {
    return type != Column_Type::text && type != Column_Type::memo && type != Column_Type::ole &&
           type != Column_Type::binary;
}

std::uint16_t stored_length(const Column& column) {
    if (column.type == Column_Type::text) return static_cast<std::uint16_t>(2 * column.length);
    if (column.type == Column_Type::binary) return static_cast<std::uint16_t>(column.length);
    if (column.type == Column_Type::boolean) return 1;
    Column_Record record;
    record.type = column.type;
    return static_cast<std::uint16_t>(record.fixed_size()); // 0 for long values
}

std::uint32_t stored_extra(const Column& column) {
    if (column.type != Column_Type::decimal) return general_collation;
    return std::uint32_t{column.precision} | std::uint32_t{column.scale} << 8U;
}

void encode_column(Column_Record& column) {
    auto& record = column.record;
    record.assign(jet4_layout.column_record, std::byte{0});
    const bool system = (column.flags & column_flags::system) != 0;
    record[0] = static_cast<std::byte>(column.type);
    store_u32(record.data() + 1, record_mark);
    store_u16(record.data() + 5, column.number);
    store_u16(record.data() + 7, column.slot);
    store_u16(record.data() + 9, system ? 0 : column.number);
    store_u32(record.data() + 11, column.extra);
    record[15] = std::byte{column.flags};
    record[16] = std::byte{column.more_flags};
    store_u16(record.data() + 21, column.fixed() ? column.offset : 0);
    store_u16(record.data() + 23, column.length);
}

bool name_before(std::u16string_view one, std::u16string_view other) {
    const auto folded = [](char16_t c) {
        return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
    };
    return std::lexicographical_compare(
        one.begin(), one.end(), other.begin(), other.end(),
        [&](char16_t a, char16_t b) { return folded(a) < folded(b); });
}

Logical_Index& logical_numbered(Definition& definition, std::uint32_t number) {
    const auto found = std::ranges::find(definition.logicals, number, &Logical_Index::number);
    SURE(found != definition.logicals.end());
    return *found;
}

void encode_logical(Logical_Index& index) {
    const bool relation = index.kind == Index_Kind::relation;
    auto& record = index.record;
    record.assign(jet4_layout.logical_record, std::byte{0});
    store_u32(record.data(), record_mark);
    store_u32(record.data() + 4, index.number);
    store_u32(record.data() + 8, index.real);
    record[12] = static_cast<std::byte>(index.side);
    store_u32(record.data() + 13, relation ? index.partner : 0xFFFFFFFFU);
    store_u32(record.data() + 17, index.partner_table);
    const unsigned on_delete = (index.cascade_delete ? 1U : 0U) | (index.null_on_delete ? 2U : 0U);
    record[21] = static_cast<std::byte>(relation ? (index.cascade_update ? 1 : 0) : no_cascades);
    record[22] = static_cast<std::byte>(relation ? on_delete : no_cascades);
    record[23] = static_cast<std::byte>(index.kind);
}

} // namespace

Definition new_definition(Page_Number page, bool system) {
    Definition definition;
    definition.chain = {page};
    definition.head.assign(jet4_layout.blocks, std::byte{0});
    auto* head = definition.head.data();
    store_u16(head, page_kinds::definition);
    store_u32(head + 0x0C, record_mark);
    store_u32(head + 0x18, 1);
    head[jet4_layout.type] = std::byte{system ? system_table : user_table};
    return definition;
}

Column_Record& append_column(Definition& definition, const Column& column, std::uint8_t flags) {
    Column_Record record;
    record.name = column.name;
    record.type = column.type;
    record.place = definition.columns.size();
    record.number = definition.max_columns++;
    record.slot = definition.variable_slots;
    if (!record.boolean()) record.offset = static_cast<std::uint16_t>(definition.fixed_end());
    record.length = stored_length(column);
    record.extra = stored_extra(column);
    record.flags = flags;
    record.more_flags = column.compressed ? 1 : 0;
    if (fixed_type(column.type)) {
        record.flags |= column.auto_number ? column_flags::fixed | column_flags::auto_number
                                           : column_flags::fixed;
    } else {
        ++definition.variable_slots;
        if (record.slot == 0) definition.first_variable = record.number;
    }
    encode_column(record);
    return definition.columns.emplace_back(std::move(record));
}

std::uint32_t append_real(Definition& definition, std::vector<Index_Part> columns,
                          std::uint8_t flags, Row_Place map, Page_Number root) {
    Real_Index index;
    index.record.assign(jet4_layout.real_record, std::byte{0});
    auto* record = index.record.data();
    store_u32(record, real_mark);
    for (std::size_t i = 0; i < 10; ++i) {
        auto* part = record + jet4_layout.real_columns + 3 * i;
        store_u16(part, i < columns.size() ? columns[i].column : 0xFFFF);
        part[2] = std::byte{i < columns.size() && columns[i].ascending};
    }
    store_u32(record + jet4_layout.real_map, map.number());
    store_u32(record + jet4_layout.real_root, root);
    record[jet4_layout.real_flags] = std::byte{flags};
    index.columns = std::move(columns);
    index.map = map;
    index.root = root;
    index.flags = flags;
    definition.reals.push_back(std::move(index));
    definition.entry_counts.resize(definition.reals.size() * jet4_layout.entry_count_size);
    return static_cast<std::uint32_t>(definition.reals.size() - 1);
}

std::uint32_t next_logical(const Definition& definition) {
    auto number = static_cast<std::uint32_t>(definition.logicals.size());
    for (const auto& index : definition.logicals) number = std::max(number, index.number + 1);
    return number;
}

std::uint32_t insert_logical(Definition& definition, std::u16string name, std::uint32_t real,
                             Index_Kind kind) {
    Logical_Index index;
    index.number = next_logical(definition);
    index.real = real;
    index.kind = kind;
    index.name = std::move(name);
    encode_logical(index);
    const auto number = index.number;
    const auto place = std::find_if(
        definition.logicals.begin(), definition.logicals.end(),
        [&](const Logical_Index& other) { return name_before(index.name, other.name); });
    definition.logicals.insert(place, std::move(index));
    return number;
}

void set_relation(Definition& definition, std::uint32_t number, const Relation_End& end) {
    auto& index = logical_numbered(definition, number);
    index.side = end.side;
    index.partner = end.partner;
    index.partner_table = end.partner_table;
    index.cascade_update = end.cascade_update;
    index.cascade_delete = end.cascade_delete;
    index.null_on_delete = end.null_on_delete;
    encode_logical(index);
}

std::uint8_t flags_of(const Index& index) {
    unsigned flags = index_flags::always;
    if (index.unique || index.primary) flags |= index_flags::unique;
    if (index.ignore_nulls) flags |= index_flags::ignores_nulls;
    if (index.required || index.primary) flags |= index_flags::required;
    return static_cast<std::uint8_t>(flags);
}

void write_definition(Pager& pager, Page_Space& space, const Definition& definition) {
    auto joined = join_definition(definition);
    const auto page_size = jet4_layout.page_size;
    const auto later = page_size - definition_page_head;
    auto chain = definition.chain;
    const auto needed =
        joined.size() <= page_size ? 1 : 1 + (joined.size() - page_size + later - 1) / later;
    while (chain.size() < needed) chain.push_back(space.allocate());
    std::size_t at = 0;
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const auto head = i == 0 ? 0 : definition_page_head;
        const auto size = std::min(joined.size() - at, page_size - head);
        auto page = pager.change(chain[i]);
        std::fill(page.begin(), page.end(), std::byte{0});
        std::copy_n(joined.begin() + static_cast<std::ptrdiff_t>(at), size,
                    page.begin() + static_cast<std::ptrdiff_t>(head));
        at += size;
        const auto used = head + size;
        store_u16(page.data(), page_kinds::definition);
        store_u16(page.data() + 2, used + definition_page_head < page_size
                                       ? page_size - used - definition_page_head
                                       : 0);
        store_u32(page.data() + 4, i + 1 < chain.size() ? chain[i + 1] : 0);
    }
}

} // namespace jet
